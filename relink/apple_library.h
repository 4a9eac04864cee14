// Recognises the sound library that comes with Apple's instruments.
#pragma once

#include <string_view>

namespace lumo::exs::relink {

/// Whether `path` leads into Apple's sound library, on the start-up volume or wherever the library
/// was moved. Whole components are compared, letter case aside; nothing under a home folder's own
/// Library belongs to it. Judges the text alone and touches no disk.
bool is_in_apple_library(std::string_view path);

} // namespace lumo::exs::relink
