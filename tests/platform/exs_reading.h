// Reads EXS24 files that a test has as strings.
#pragma once

#include "sampler/exs_reader.h"

#include <cstdint>
#include <optional>
#include <string>

namespace lumo::platform {

/// The instrument in the bytes of a file; nothing when they are refused.
inline std::optional<ExsInstrument> instrument_in(const std::string& bytes) {
    return read_exs({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

} // namespace lumo::platform
