// Limits of nesting in property lists. CoreFoundation counts differently in its two formats.
#pragma once

#include <cstddef>

namespace lumo::platform {

/// The maximum number of nested arrays and dictionaries in XML, including the outermost.
inline constexpr std::size_t max_containers_in_xml = 512;
/// The maximum number of levels below the root in a binary property list, including leaves.
inline constexpr std::size_t max_levels_in_binary = 512;

} // namespace lumo::platform
