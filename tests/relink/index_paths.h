// The paths in an index, for tests.
#pragma once

#include <lumo/relink.h>

#include <algorithm>
#include <string>
#include <vector>

namespace lumo::exs {

/// All paths of an index, sorted.
inline std::vector<std::string> paths_of(const SampleIndex& index) {
    std::vector<std::string> paths;
    for (const auto& [key, entries] : index.files) {
        for (const SampleIndex::Entry& entry : entries) {
            paths.push_back(entry.path);
        }
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

} // namespace lumo::exs
