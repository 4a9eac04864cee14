// Finds the sample files under a root folder.
#pragma once

#include "name_list.h"

#include <functional>
#include <string>

namespace lumo::exs::relink {

/// Takes the samples of one folder: its path with a slash at the end (empty for the current
/// folder), and their names, of which there is at least one. Both are gone after the call. False
/// ends the walk.
using SamplesFound = std::function<bool(const std::string& folder, const NameList& names)>;

/// Calls `found` for each folder under `root` (empty: the current folder) that holds samples. Names
/// that begin with a dot are skipped, symbolic links are followed, each folder is read once; what
/// cannot be read is passed over, and what belongs to Apple's sound library is left out, also
/// behind links. Which paths are found does not depend on the order of the disk.
void walk_samples(const std::string& root, const SamplesFound& found);

} // namespace lumo::exs::relink
