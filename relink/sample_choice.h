// Chooses between several files with the same name for a recorded path.
#pragma once

#include <lumo/relink.h>

#include <string_view>
#include <vector>

namespace lumo::exs::relink {

/// The path in `entries` that shares the most consecutive folders with `recorded`, counted from the
/// file upwards and compared by key; among equals the one with the fewest components; then the one
/// that is first in byte order. `entries` must not be empty; the path is borrowed from them.
std::string_view choose(const std::vector<SampleIndex::Entry>& entries, std::string_view recorded);

} // namespace lumo::exs::relink
