// Names that an old file system shortened.
#pragma once

#include <lumo/relink.h>

#include <string_view>

namespace lumo::exs::relink {

/// A name of exactly 31 characters that ends in "#", four or more upper-case hexadecimal digits and
/// an extension was longer once: the entry of the one indexed file whose name has more than 31
/// characters, the same start and the same extension. Null for every other name, when no file fits
/// and when several do.
const SampleIndex::Entry* find_by_mangled_name(const SampleIndex& index, std::string_view name);

} // namespace lumo::exs::relink
