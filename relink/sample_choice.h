// Which of several files of one name stands for a recorded path.
#pragma once

#include <lumo/relink.h>

#include <string_view>
#include <vector>

namespace lumo::exs::relink {

/// The entry whose path shares the longest run of folders with `recorded`, counted from the file
/// upwards and compared by key; of several the one with the fewest components; of several the
/// byte-wise smallest. `entries` is not empty.
const SampleIndex::Entry& choose(const std::vector<SampleIndex::Entry>& entries,
                                 std::string_view recorded);

} // namespace lumo::exs::relink
