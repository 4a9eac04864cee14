// What the name of a file says: whether it is a sample, and the key that it is indexed under.
#pragma once

#include <string>
#include <string_view>

namespace lumo::exs::relink {

constexpr bool is_ascii(char c) {
    return static_cast<unsigned char>(c) < 0x80;
}

/// `c` in lower case if it is an ASCII letter.
constexpr char to_lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

/// The last component of `path`; empty when the path ends in a slash.
inline std::string_view file_name(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

/// Whether a file name has one of the extensions of samples (letter case aside) and does not
/// begin with a dot.
bool is_sample_name(std::string_view name);

/// Whether the last component of `path` is a sample's name and the path leads through none of the
/// companions of files (".AppleDouble", "..namedfork").
bool is_sample_path(std::string_view path);

/// Puts the key of a file or folder name into `key`, whose storage is used again: the name in
/// Unicode normalisation form C with full case folding. A name that is not UTF-8 is its own key.
/// Names that differ in letter case or form only have equal keys; a key is its own key.
void make_key(std::string_view name, std::string& key);

/// The part of make_key that knows Unicode, for a name that is not plain ASCII. False, with `key`
/// undefined, when the name is not UTF-8. One of two implementations is built.
bool make_unicode_key(std::string_view name, std::string& key);

} // namespace lumo::exs::relink
