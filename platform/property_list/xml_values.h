// The text of the XML elements integer, real, date and data, as values.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace lumo::platform {

/// A whole number from -2^63 to 2^64 - 1.
struct XmlInteger {
    std::uint64_t magnitude = 0;
    bool negative = false;
};

/// The number in an <integer>: blanks, a sign, blanks, decimal digits or 0x and hexadecimal ones.
/// Nothing when it is written otherwise (blanks at the end included) or out of range.
std::optional<XmlInteger> parse_integer(std::string_view text);

/// The number in a <real>, whose text is UTF-8: blanks, a sign and a decimal; or nan, inf, infinity
/// in any case, without a blank. A mark at the start is skipped. Beyond the range of a double:
/// infinity or zero. Nothing when it is written otherwise.
std::optional<double> parse_real(std::string_view text);

/// Seconds since 2001-01-01 00:00:00 UTC of a <date>, which must read [-]YYYY-MM-DDThh:mm:ssZ with
/// any number of year digits. The fields are not checked but counted on: the 30th of February is
/// the 2nd of March. Nothing when it is written otherwise or its year exceeds 32 bits.
std::optional<double> parse_date(std::string_view text);

/// Puts the bytes of a <data> in base64 into `bytes`. Characters outside the alphabet are skipped,
/// an incomplete group at the end is dropped. False when a character is not ASCII.
bool decode_base64(std::string_view text, std::vector<std::uint8_t>& bytes);

} // namespace lumo::platform
