// The entries and the real path of an open folder, by the fastest method of the system.
#pragma once

#include "base/descriptor.h"

#include <limits.h>
#include <stdlib.h>

#include <functional>
#include <string>

namespace lumo::exs::relink {

/// Receives an entry: its name and its type, a DT_ value of dirent.h (DT_UNKNOWN if the file system
/// does not provide it).
using TakeEntry = std::function<void(const char* name, unsigned char type)>;

/// Calls `take` for each entry of the open `folder`, including "." and "..". Stops silently at a
/// read error. Closes the folder after the last call. One of two implementations is built.
void read_entries(Descriptor folder, const TakeEntry& take);

/// `path` (empty: the current folder) with its links resolved; empty on failure.
inline std::string real_path(const std::string& path) {
    char resolved[PATH_MAX];
    return realpath(path.empty() ? "." : path.c_str(), resolved) ? resolved : "";
}

/// The same as real_path(path), for a `folder` that was opened at `path`. One of two
/// implementations is built.
std::string real_path_of(const Descriptor& folder, const std::string& path);

} // namespace lumo::exs::relink
