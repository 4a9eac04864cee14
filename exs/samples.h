// The samples of an instrument: they must exist, are counted, and are placed in the show.
#pragma once

#include "references.h"
#include <lumo/exs.h>

#include <string>

namespace lumo::exs {

/// Makes sure that every sample exists; the path of one that does not is replaced by what `index`
/// (may be null) knows in its place. Counts the samples in `report`. False, with `report.error`
/// set, at the first that is missing.
bool find_samples(References& samples, const SampleIndex* index, Report& report);

/// Places every sample in the package's "samples" folder, under the name of its own folder, and
/// counts in `report` what was copied. A file of the same name and size that is there is the
/// sample; one of another size stays, and the sample is numbered. Returns the samples' new paths,
/// relative to the package. Throws std::filesystem::filesystem_error.
References place_samples(const References& samples, const std::string& package, Report& report);

} // namespace lumo::exs
