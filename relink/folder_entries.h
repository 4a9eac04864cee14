// The entries of an open folder, by the quickest way that the system has.
#pragma once

#include <functional>

namespace lumo::exs::relink {

/// Takes an entry: its name and its type, one of the DT_ values of dirent.h (DT_UNKNOWN where the
/// file system does not tell).
using TakeEntry = std::function<void(const char* name, unsigned char type)>;

/// Calls `take` for each entry of the folder that is open as `descriptor`, "." and ".." among them,
/// and closes it. What cannot be read is passed over. One of two implementations is built.
void read_entries(int descriptor, const TakeEntry& take);

} // namespace lumo::exs::relink
