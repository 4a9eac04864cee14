// Parses the text of the XML elements integer, real, date and data.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace lumo::platform {

/// An integer from -2^63 to 2^64 - 1.
struct XmlInteger {
    std::uint64_t magnitude = 0;
    bool negative = false;
};

/// Parses an <integer>: blanks, a sign, blanks, decimal digits or 0x and hexadecimal digits.
/// Nothing when it has another form (including blanks at the end) or is out of range.
std::optional<XmlInteger> parse_integer(std::string_view text);

/// Parses a <real>, whose text is UTF-8: blanks, a sign and a decimal; or `nan`; or a sign and
/// `inf` or `infinity`; these words in any case and without blanks. The sign is optional, and a
/// byte order mark at the start is skipped. Beyond the range of a double: infinity or zero. Nothing
/// for any other form.
std::optional<double> parse_real(std::string_view text);

/// Parses a <date> as seconds since 2001-01-01 00:00:00 UTC. Its form is [-]YYYY-MM-DDThh:mm:ssZ
/// with any number of year digits. The fields are not range-checked, and excess carries over: the
/// 30th of February is the 2nd of March (month 00 is January). Nothing for any other form or a year
/// beyond 32 bits.
std::optional<double> parse_date(std::string_view text);

/// Decodes the base64 of a <data> into `bytes`. Characters outside the alphabet are skipped, an
/// incomplete group at the end is dropped. False when a character is not ASCII.
bool decode_base64(std::string_view text, std::vector<std::uint8_t>& bytes);

} // namespace lumo::platform
