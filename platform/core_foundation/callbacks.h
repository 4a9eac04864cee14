// Interprets the callback structures of arrays and dictionaries: the children are either
// CoreFoundation objects, retained and compared by value, or raw pointers.
#pragma once

#include "core_foundation/container.h"

#include <cstdint>

namespace lumo::platform {

/// Container::owns_values for kCFTypeArrayCallBacks, 0 for null; other callbacks stop the process.
std::uint8_t flags_of_array(const CFArrayCallBacks* callbacks) noexcept;
/// The flags of a dictionary, by the same rule for its keys and for its values.
std::uint8_t flags_of_dictionary(const CFDictionaryKeyCallBacks* keys,
                                 const CFDictionaryValueCallBacks* values) noexcept;

} // namespace lumo::platform
