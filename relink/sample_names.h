// Properties of file names: whether a name is a sample's, and the key that it is indexed by.
#pragma once

#include "base/characters.h"

#include <string>
#include <string_view>

namespace lumo::exs::relink {

constexpr bool is_ascii(char c) {
    return static_cast<unsigned char>(c) < 0x80;
}

/// The last component of `path`; empty when the path ends in a slash.
inline std::string_view file_name(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

/// Whether a file name has one of the extensions of samples (ignoring case) and does not begin with
/// a dot.
bool is_sample_name(std::string_view name);

/// Whether the last component of `path` is a sample's name and no component is a companion of a
/// file (".AppleDouble", "..namedfork").
bool is_sample_path(std::string_view path);

/// Stores the key of a file or folder name in `key`, reusing its storage: the name in Unicode
/// normalisation form C with full case folding. A name that is not UTF-8 is its own key. Names that
/// differ only in letter case or normalisation have equal keys; the key of a key is the key itself.
void make_key(std::string_view name, std::string& key);

/// The Unicode part of make_key, for names that are not ASCII. False, with `key` undefined, when
/// the name is not UTF-8. One of two implementations is built.
bool make_unicode_key(std::string_view name, std::string& key);

} // namespace lumo::exs::relink
