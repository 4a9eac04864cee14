// Texts from other programs: report lines and file names may be any bytes. Their displayed form is
// always UTF-8 that has no effect on a terminal or a browser other than being shown.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace lumo::library {

/// `bytes` as valid UTF-8: each byte that is not part of valid UTF-8 is replaced by a character of
/// a private area. `as_bytes` restores exactly `bytes`, even if they contain such characters.
std::string as_utf8(std::string_view bytes);
std::string as_bytes(std::string_view text);

/// The displayed form of `bytes`: bytes that are not UTF-8, control characters and characters that
/// change the direction of writing are shown as \x1b, \xff or \u202e.
std::string shown(std::string_view bytes);

/// The part of `path` up to its last slash, with the slash; empty when there is none.
std::string_view folder_of(std::string_view path);
/// The part of `path` after its last slash.
std::string_view name_of(std::string_view path);

/// The width of a text on a terminal, in columns.
std::size_t columns(std::string_view text);
/// `text`, truncated to `width` columns with an ellipsis if necessary; empty when `width` is 0.
std::string cut_to(std::string_view text, std::size_t width);

/// A number with thousands separators, such as 12,345.
std::string with_thousands(std::uint64_t number);
/// A number and a noun: "1 sample", "2,000 samples".
std::string counted(std::uint64_t number, std::string_view thing);
/// A size in a suitable unit: "812 bytes", "1.2 GB" (powers of 1000).
std::string bytes_text(std::uint64_t bytes);
/// A duration in suitable units: "0.4 s", "12 s", "3 min 12 s", "2 h 5 min".
std::string time_text(double seconds);

} // namespace lumo::library
