// How deep a property list may nest. CoreFoundation counts differently in its two formats.
#pragma once

#include <cstddef>

namespace lumo::platform {

/// Arrays and dictionaries inside each other in XML, the outermost counted.
inline constexpr std::size_t most_containers_in_xml = 512;
/// Levels below the root in a binary property list, leaves counted.
inline constexpr std::size_t most_levels_in_binary = 512;

} // namespace lumo::platform
