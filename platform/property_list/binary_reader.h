// Binary property lists.
#pragma once

#include "core_foundation/object.h"
#include "property_list/binary_trailer.h"

#include <cstdint>
#include <span>

namespace lumo::platform {

/// The value that a binary property list holds, or null when CoreFoundation would not take it;
/// `trailer` is what read_binary_trailer made of the same bytes. An object that is referred to
/// several times is made once and shared, so that neither the time nor the memory needed grows
/// beyond a multiple of the file's size.
Owned read_binary(std::span<const std::uint8_t> bytes, const BinaryTrailer& trailer);

} // namespace lumo::platform
