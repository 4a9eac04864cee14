// Loads EXS24 instruments.
#pragma once

#include "ref.h"
#include "sampler/sample_file.h"

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace lumo::platform {

/// What an instrument gives the sampler.
struct LoadedInstrument {
    /// The state's "Instrument".
    Ref<CFDictionaryRef> instrument;
    /// The state's "file-references": from "Sample:" or "Bank:" and a number to a path.
    Ref<CFDictionaryRef> references;
    /// The samples and sound banks, in the order to open them in.
    std::vector<SampleReference> samples;
};

/// Reads the EXS24 instrument in the file at `path` into `loaded`; opens none of its samples.
/// Returns 0 or a status, `loaded` being as it was.
OSStatus load_exs(const std::string& path, LoadedInstrument& loaded);

/// The same for bytes at hand, those of a file named `file_name` (extension and all).
OSStatus load_exs_bytes(std::span<const std::uint8_t> bytes, const std::string& file_name,
                        LoadedInstrument& loaded);

} // namespace lumo::platform
