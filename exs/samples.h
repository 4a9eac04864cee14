// Finds the samples of an instrument, counts them, and places them in the show.
#pragma once

#include "references.h"
#include <lumo/exs.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace lumo::exs {

/// A sample file that was found.
struct SampleFile {
    std::string path;
    std::uint64_t size = 0; ///< in bytes; all ones when it is not a regular file
    bool is_link = false;
};

/// Sample files under the keys of their references.
using SampleFiles = std::map<std::string, SampleFile>;

/// The sample of each reference: the file used during the load (`report.relink`), that at the
/// recorded path, or one from `index` (may be null). Counts the samples in `report`. Nothing, with
/// `report.error` set, when one is missing.
std::optional<SampleFiles> find_samples(const References& references, const SampleIndex* index,
                                        Report& report);

/// Places every sample in the package's "samples" folder, in a folder named like its current one,
/// and counts the copied bytes in `report`. An existing file with the same name and size is used
/// instead of a copy; if the size differs, the sample gets a number. Returns the samples' new
/// paths, relative to the package. Throws std::filesystem::filesystem_error.
References place_samples(const SampleFiles& samples, const std::string& package, Report& report);

} // namespace lumo::exs
