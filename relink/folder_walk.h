// Finds the sample files in a root folder and its subfolders.
#pragma once

#include "name_list.h"

#include <functional>
#include <string>

namespace lumo::exs::relink {

/// Receives the samples of one folder: its path with a slash at the end (empty for the current
/// folder), and at least one name. Both are valid only during the call. Returning false ends the
/// walk.
using SamplesFound = std::function<bool(const std::string& folder, const NameList& names)>;

/// Calls `found` for each folder in `root` (empty: the current folder) that contains samples.
/// Follows symbolic links and reads each folder once. Skips names that begin with a dot, folders
/// that cannot be read, and Apple's sound library, even behind links. The result does not depend on
/// the order of the disk.
void walk_samples(const std::string& root, const SamplesFound& found);

} // namespace lumo::exs::relink
