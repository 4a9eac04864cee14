// File names that an old file system shortened.
#pragma once

#include <lumo/relink.h>

#include <string_view>

namespace lumo::exs::relink {

/// Finds the entry for a mangled name: exactly 31 characters, ending in "#", four or more
/// upper-case hexadecimal digits and an extension. The result is the one indexed file whose name
/// has more than 31 characters, the same start and the same extension. Null for every other name,
/// and when no file or several files match.
const SampleIndex::Entry* find_by_mangled_name(const SampleIndex& index, std::string_view name);

} // namespace lumo::exs::relink
