// Texts from outside: report lines and file names are bytes that may be anything. What is shown of
// them is always UTF-8 that a terminal and a browser show as text and do nothing else with.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace lumo::library {

/// `bytes` with each byte that is no part of valid UTF-8 replaced by a character of a private area,
/// so that a reader who insists on UTF-8 takes it. `as_bytes` gives exactly `bytes` back, also when
/// such characters stand in them.
std::string as_utf8(std::string_view bytes);
std::string as_bytes(std::string_view text);

/// What is shown of `bytes`: bytes that are no UTF-8, control characters and the characters that
/// turn the direction of writing appear as \x1b, \xff or \u202e.
std::string shown(std::string_view bytes);

/// Columns that a text takes on a terminal.
std::size_t columns(std::string_view text);
/// The start of `text` that fits into `width` columns, its cut marked by an ellipsis; empty when
/// `width` is 0.
std::string cut_to(std::string_view text, std::size_t width);

/// A number with its thousands apart, such as 12,345.
std::string with_thousands(std::uint64_t number);
/// A number and what it counts: "1 sample", "2,000 samples".
std::string counted(std::uint64_t number, std::string_view thing);
/// Bytes in the unit that suits them: "812 bytes", "1.2 GB" (of 1000s).
std::string bytes_text(std::uint64_t bytes);
/// A time in the units that suit it: "0.4 s", "12 s", "3 min 12 s", "2 h 5 min".
std::string time_text(double seconds);

} // namespace lumo::library
