// Reads EXS24 instruments of every generation.
#pragma once

#include "sampler/exs_instrument.h"

#include <cstdint>
#include <optional>
#include <span>

namespace lumo::platform {

/// The instrument in the bytes of an .exs file, or nothing when they are not a whole EXS24 file:
/// chunks that reach its end exactly, one of them an instrument chunk, and a parameter table
/// inside its chunk. Time and memory are linear in the number of bytes.
std::optional<ExsInstrument> read_exs(std::span<const std::uint8_t> file);

} // namespace lumo::platform
