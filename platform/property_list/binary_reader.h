// Reads binary property lists.
#pragma once

#include "core_foundation/object.h"
#include "property_list/binary_trailer.h"

#include <cstdint>
#include <span>

namespace lumo::platform {

/// The value of a binary property list, or null when CoreFoundation would reject it; `trailer` is
/// the result of read_binary_trailer for the same bytes. An object that is referred to several
/// times is created once and shared, so time and memory are linear in the size of the file.
Owned read_binary(std::span<const std::uint8_t> bytes, const BinaryTrailer& trailer);

} // namespace lumo::platform
