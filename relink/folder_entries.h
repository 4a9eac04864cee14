// The entries and the real path of an open folder, by the quickest way that the system has.
#pragma once

#include "allocated_text.h"
#include "base/descriptor.h"

#include <stdlib.h>

#include <functional>
#include <string>

namespace lumo::exs::relink {

/// Takes an entry: its name and its type, one of the DT_ values of dirent.h (DT_UNKNOWN where the
/// file system does not tell).
using TakeEntry = std::function<void(const char* name, unsigned char type)>;

/// Calls `take` for each entry of the open `folder`, "." and ".." among them. What cannot be read
/// is passed over. The folder is open until the last call is done, and closed then. One of two
/// implementations is built.
void read_entries(Descriptor folder, const TakeEntry& take);

/// `path` (empty: the current folder) with its links resolved; empty when that cannot be done.
inline std::string real_path(const std::string& path) {
    return take_text(realpath(path.empty() ? "." : path.c_str(), nullptr));
}

/// real_path(path) for a `folder` that was opened at `path`. One of two implementations is built.
std::string real_path_of(const Descriptor& folder, const std::string& path);

} // namespace lumo::exs::relink
