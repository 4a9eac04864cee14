// Finds the sample files under a root folder.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace lumo::exs::relink {

/// Takes one sample file: the path of its folder with a slash at the end (empty for the current
/// folder), and its name. Both views end with the call.
using SampleFound = std::function<void(std::string_view folder, std::string_view name)>;

/// Calls `found` for each sample file under `root` (empty: the current folder). Names that begin
/// with a dot are skipped, symbolic links are followed, each folder is read once; what cannot be
/// read is passed over. Which paths are found does not depend on the order of the disk.
void walk_samples(const std::string& root, const SampleFound& found);

} // namespace lumo::exs::relink
