// Reads EXS24 instruments of every generation.
#pragma once

#include "sampler/exs_instrument.h"

#include <cstdint>
#include <optional>
#include <span>

namespace lumo::platform {

/// The instrument in the bytes of an .exs file; nothing when they are not a complete EXS24 file:
/// chunks that end exactly at the end of the file, with an instrument chunk among them, and a
/// parameter table that does not exceed its chunk. Time and memory are linear in the number of
/// bytes.
std::optional<ExsInstrument> read_exs(std::span<const std::uint8_t> file);

} // namespace lumo::platform
