// Reads the entries of a folder.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace lumo::library {

/// Receives an entry: its name and its type, a DT_ value of dirent.h. A link is not followed. The
/// type is DT_UNKNOWN when the entry has been removed meanwhile.
using TakeEntry = std::function<void(std::string_view name, unsigned char type)>;

/// Calls `take` for each entry of a folder whose name does not begin with a dot. False when the
/// folder cannot be read to its end.
bool read_visible_entries(const std::string& folder, const TakeEntry& take);

} // namespace lumo::library
