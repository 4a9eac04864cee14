// CoreFoundation's notations of numbers, dates and data. They are stricter than the C library's in
// some places (no blank after a number) and laxer in others (unknown characters in data are
// skipped), and a state must be read identically on both systems.
#include "property_list/xml_values.h"

#include "base/characters.h"
#include "base/utf8.h"

#include <locale.h>
#include <stdlib.h>
#include <strings.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <limits>
#include <string>
#include <system_error>
#include <version>

namespace lumo::platform {
namespace {

bool is_wide_blank(char32_t c) {
    return (c >= 0x2000 && c <= 0x200B) || c == 0x3000;
}

/// The size in bytes of the blank at the start of the text of an <integer>, which CoreFoundation
/// reads byte by byte: control characters, space, the bytes 0x7F to 0xA0 and, in UTF-8, the wide
/// blanks. 0 when there is none.
std::size_t blank_size(std::string_view text) {
    if (text.empty()) {
        return 0;
    }
    const auto byte = static_cast<std::uint8_t>(text[0]);
    if (byte <= 0x20 || (byte >= 0x7F && byte <= 0xA0)) {
        return 1;
    }
    const Utf8Character first = first_utf8_character(text);
    return is_wide_blank(first.value) ? first.size : 0;
}

void skip_blanks(std::string_view& text) {
    while (const std::size_t size = blank_size(text)) {
        text.remove_prefix(size);
    }
}

/// Skips the blanks at the start of the text of a <real>, which CoreFoundation reads character by
/// character.
void skip_blank_characters(std::string_view& text) {
    while (!text.empty()) {
        const Utf8Character next = first_utf8_character(text);
        const char32_t c = next.value;
        if (next.size == 0 ||
            !((c >= 0x01 && c <= 0x20) || (c >= 0x7F && c <= 0xA0) || is_wide_blank(c))) {
            return;
        }
        text.remove_prefix(next.size);
    }
}

bool equal_ignoring_case(std::string_view text, std::string_view lower) {
    return text.size() == lower.size() && strncasecmp(text.data(), lower.data(), lower.size()) == 0;
}

/// Removes the digits at the start of `text` and returns their number.
std::size_t skip_digits(std::string_view& text) {
    std::size_t count = 0;
    while (count < text.size() && is_digit(text[count])) {
        ++count;
    }
    text.remove_prefix(count);
    return count;
}

bool skip_one_of(std::string_view& text, std::string_view set) {
    if (text.empty() || set.find(text[0]) == set.npos) {
        return false;
    }
    text.remove_prefix(1);
    return true;
}

/// Whether `text` is digits with at most one point, then an optional exponent.
bool is_decimal(std::string_view text) {
    std::size_t digits = skip_digits(text);
    if (skip_one_of(text, ".")) {
        digits += skip_digits(text);
    }
    if (digits == 0) {
        return false;
    }
    if (skip_one_of(text, "eE")) {
        skip_one_of(text, "+-");
        if (skip_digits(text) == 0) {
            return false;
        }
    }
    return text.empty();
}

/// The double nearest to such text; infinity or zero when out of range. Uses std::from_chars where
/// the C++ library has it for double, since it is fast; libc++ 19 lacks it, and for a decimal out
/// of range it does not distinguish infinity from zero. There strtod_l is used. Both round to
/// nearest, ties to even, and do not depend on the locale.
double nearest_double(std::string_view decimal) {
#ifdef __cpp_lib_to_chars
    double value = 0;
    if (std::from_chars(decimal.data(), decimal.data() + decimal.size(), value).ec == std::errc{}) {
        return value;
    }
#endif
    static const locale_t no_locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return strtod_l(std::string(decimal).c_str(), nullptr, no_locale);
}

/// Days from 2001-01-01 to the first of March of `year`, in the proleptic Gregorian calendar.
std::int64_t days_to_march(std::int64_t year) {
    const auto floor_div = [](std::int64_t a, std::int64_t b) {
        return a / b - (a % b < 0 ? 1 : 0);
    };
    return 365 * year + floor_div(year, 4) - floor_div(year, 100) + floor_div(year, 400) - 730791;
}

constexpr std::array<int, 12> days_before_month_from_march = {0,   31,  61,  92,  122, 153,
                                                              184, 214, 245, 275, 306, 337};

std::int64_t days_since_2001(std::int64_t year, unsigned month, unsigned day) {
    const unsigned from_march = std::max(month, 1u) + 9; // January is the 10th month after March
    const std::int64_t march = days_to_march(year + from_march / 12 - 1);
    return march + days_before_month_from_march[from_march % 12] + day - 1;
}

/// The two digits at `at`, or nothing.
std::optional<unsigned> two_digits(std::string_view text, std::size_t at) {
    if (!is_digit(text[at]) || !is_digit(text[at + 1])) {
        return std::nullopt;
    }
    return static_cast<unsigned>((text[at] - '0') * 10 + (text[at + 1] - '0'));
}

enum : std::int8_t { skipped = -1, refused = -2 };

/// The value of each byte in base64. The padding, "=", has the value zero.
constexpr std::array<std::int8_t, 256> base64_values = [] {
    std::array<std::int8_t, 256> values{};
    for (std::size_t i = 0; i < 256; ++i) {
        values[i] = i < 128 ? skipped : refused;
    }
    constexpr std::string_view alphabet =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (std::size_t i = 0; i < alphabet.size(); ++i) {
        values[static_cast<std::uint8_t>(alphabet[i])] = static_cast<std::int8_t>(i);
    }
    values['='] = 0;
    return values;
}();

} // namespace

std::optional<XmlInteger> parse_integer(std::string_view text) {
    XmlInteger result;
    skip_blanks(text);
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
        result.negative = text[0] == '-';
        text.remove_prefix(1);
        skip_blanks(text);
    }
    const bool hex = text.starts_with("0x") || text.starts_with("0X");
    if (hex) {
        text.remove_prefix(2);
    }
    const char* end = text.data() + text.size();
    const auto [at, error] = std::from_chars(text.data(), end, result.magnitude, hex ? 16 : 10);
    constexpr std::uint64_t lowest = std::uint64_t{1} << 63;
    if (error != std::errc{} || at != end || (result.negative && result.magnitude > lowest)) {
        return std::nullopt;
    }
    return result;
}

std::optional<double> parse_real(std::string_view text) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (text.starts_with(mark)) {
        text.remove_prefix(mark.size());
    }
    if (equal_ignoring_case(text, "nan")) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    const std::size_t before_blanks = text.size();
    skip_blank_characters(text);
    const bool has_blanks = text.size() != before_blanks;
    const bool negative = text.starts_with('-');
    skip_one_of(text, "+-");
    double value = 0;
    if (!has_blanks &&
        (equal_ignoring_case(text, "inf") || equal_ignoring_case(text, "infinity"))) {
        value = std::numeric_limits<double>::infinity();
    } else if (!is_decimal(text)) {
        return std::nullopt;
    } else {
        value = nearest_double(text);
    }
    return negative ? -value : value;
}

std::optional<double> parse_date(std::string_view text) {
    const bool before_christ = text.starts_with('-');
    if (before_christ) {
        text.remove_prefix(1);
    }
    std::int32_t year = 0;
    const std::string_view from_year = text;
    if (skip_digits(text) == 0 || text.size() != std::string_view("-MM-DDThh:mm:ssZ").size() ||
        text[0] != '-' || text[3] != '-' || text[6] != 'T' || text[9] != ':' || text[12] != ':' ||
        text[15] != 'Z' || std::from_chars(from_year.data(), text.data(), year).ec != std::errc{}) {
        return std::nullopt;
    }
    const auto month = two_digits(text, 1);
    const auto day = two_digits(text, 4);
    const auto hour = two_digits(text, 7);
    const auto minute = two_digits(text, 10);
    const auto second = two_digits(text, 13);
    if (!month || !day || !hour || !minute || !second) {
        return std::nullopt;
    }
    const std::int64_t days = days_since_2001(before_christ ? -year : year, *month, *day);
    const std::int64_t minutes = days * 1440 + std::int64_t{*hour} * 60 + *minute;
    return static_cast<double>(minutes * 60 + *second);
}

bool decode_base64(std::string_view text, std::vector<std::uint8_t>& bytes) {
    bytes.clear();
    bytes.reserve(text.size() / 4 * 3);
    std::uint32_t group = 0;
    int symbols = 0;
    int padding = 0; // consecutive "="; blanks between them do not count
    for (const char c : text) {
        const std::int8_t value = base64_values[static_cast<std::uint8_t>(c)];
        if (value == refused) {
            return false;
        }
        if (c == '=') {
            ++padding;
        } else if (c != ' ' && (c < '\t' || c > '\r')) {
            padding = 0;
        }
        if (value == skipped) {
            continue;
        }
        group = group << 6 | static_cast<std::uint32_t>(value);
        if (++symbols % 4 == 0) {
            for (int shift = 16; shift >= 8 * std::min(padding, 2); shift -= 8) {
                bytes.push_back(static_cast<std::uint8_t>(group >> shift));
            }
        }
    }
    return true;
}

} // namespace lumo::platform
