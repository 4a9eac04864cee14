// The entries of an open folder, by the quickest way that the system has.
#pragma once

#include "descriptor.h"

#include <functional>

namespace lumo::exs::relink {

/// Takes an entry: its name and its type, one of the DT_ values of dirent.h (DT_UNKNOWN where the
/// file system does not tell).
using TakeEntry = std::function<void(const char* name, unsigned char type)>;

/// Calls `take` for each entry of the open `folder`, "." and ".." among them. What cannot be read
/// is passed over. The folder is open until the last call is done, and closed then. One of two
/// implementations is built.
void read_entries(Descriptor folder, const TakeEntry& take);

} // namespace lumo::exs::relink
