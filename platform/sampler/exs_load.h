// Loads EXS24 instruments.
#pragma once

#include "base/ref.h"
#include "sampler/sample_file.h"

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace lumo::platform {

/// The parts of a sampler state that an instrument provides.
struct LoadedInstrument {
    /// The state's "Instrument".
    Ref<CFDictionaryRef> instrument;
    /// The state's "file-references": "Sample:" or "Bank:" and a number, to a path.
    Ref<CFDictionaryRef> references;
    /// The samples and sound banks, in the order in which they are opened.
    std::vector<SampleReference> samples;
};

/// Reads the EXS24 instrument in the file at `path` into `loaded`; opens none of its samples.
/// Returns 0, or a status with `loaded` unchanged.
OSStatus load_exs(const std::string& path, LoadedInstrument& loaded);

/// As load_exs, for the bytes of a file named `file_name` (including the extension).
OSStatus load_exs_bytes(std::span<const std::uint8_t> bytes, const std::string& file_name,
                        LoadedInstrument& loaded);

} // namespace lumo::platform
