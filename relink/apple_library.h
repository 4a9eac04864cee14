// Recognises the sound library that comes with Apple's instruments.
#pragma once

#include <string_view>

namespace lumo::exs::relink {

/// Whether `path` is inside Apple's sound library, on the start-up volume or wherever the library
/// was moved. Whole components are compared, ignoring case. In the Library of a home folder only
/// names that are unique to Apple's content count ("Logic Pro Library.bundle", the resources of
/// Apple's applications). Examines the text only; accesses no disk.
bool is_in_apple_library(std::string_view path);

/// Whether a file or folder called `name` can belong to the library although its folder does not: a
/// quick test that makes is_in_apple_library unnecessary for most names.
bool may_enter_apple_library(std::string_view name);

} // namespace lumo::exs::relink
