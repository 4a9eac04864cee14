// Recognises the sound library that comes with Apple's instruments.
#pragma once

#include <string_view>

namespace lumo::exs::relink {

/// Whether `path` leads into Apple's sound library, on the start-up volume or wherever the library
/// was moved. Whole components are compared, letter case aside. Nothing in a home folder's own
/// Library belongs to it but what names Apple's content by itself ("Logic Pro Library.bundle", the
/// resources of Apple's applications). Judges the text alone and touches no disk.
bool is_in_apple_library(std::string_view path);

/// Whether a file or folder called `name` may belong to the library although the folder that holds
/// it does not: a quick test that spares most names the one of the whole path.
bool may_enter_apple_library(std::string_view name);

} // namespace lumo::exs::relink
