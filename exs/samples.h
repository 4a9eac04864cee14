// The samples of an instrument: they must exist, are counted, and are placed in the show.
#pragma once

#include "references.h"
#include <lumo/exs.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace lumo::exs {

/// A sample file as it was found.
struct SampleFile {
    std::string path;
    std::uint64_t size = 0; ///< in bytes; all ones when it has none that can be read
    bool is_link = false;
};

/// Sample files under the keys of their references.
using SampleFiles = std::map<std::string, SampleFile>;

/// Makes sure that every sample of `references` exists. One that does not is looked for where the
/// load has found it (`report.relink`), else in `index` (may be null). Counts the samples in
/// `report`. Nothing, with `report.error` set, at the first that is missing.
std::optional<SampleFiles> find_samples(const References& references, const SampleIndex* index,
                                        Report& report);

/// Places every sample in the package's "samples" folder, under the name of its own folder, and
/// counts in `report` what was copied. A file of the same name and size that is there is the
/// sample; one of another size stays, and the sample is numbered. Returns the samples' new paths,
/// relative to the package. Throws std::filesystem::filesystem_error.
References place_samples(const SampleFiles& samples, const std::string& package, Report& report);

} // namespace lumo::exs
