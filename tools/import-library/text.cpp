// The C library determines the width of a character, for the user's locale (which main sets).
#include "text.h"

#include "base/utf8.h"

#include <wchar.h>

#include <array>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>

namespace lumo::library {
namespace {

// A byte B that is not UTF-8 becomes the character byte_base + B of the last private plane.
constexpr char32_t byte_base = 0x10F700;

bool stands_for_byte(char32_t value) {
    return value >= byte_base + 0x80 && value <= byte_base + 0xFF;
}

/// Calls `take` for each character of `text`, and for each byte that is not part of one (size 0).
template <typename Take>
void for_each_character(std::string_view text, Take take) {
    while (!text.empty()) {
        const Utf8Character character = first_utf8_character(text);
        const std::size_t size = character.size == 0 ? 1 : character.size;
        take(character, text.substr(0, size));
        text.remove_prefix(size);
    }
}

bool is_printable_ascii(char byte) {
    return byte > '\x1F' && byte < '\x7F';
}

/// `text` with each character or byte outside one (size 0) replaced for which
/// `replacement(character, piece)` returns a text. Printable ASCII is not replaced.
template <typename Replacement>
std::string replaced(std::string_view text, Replacement replacement) {
    std::string result;
    result.reserve(text.size());
    std::size_t copied = 0; // the bytes before it are in the result
    for (std::size_t at = 0; at < text.size();) {
        if (is_printable_ascii(text[at])) {
            ++at;
            continue;
        }
        const Utf8Character character = first_utf8_character(text.substr(at));
        const std::string_view piece = text.substr(at, character.size == 0 ? 1 : character.size);
        if (const std::optional<std::string> other = replacement(character, piece)) {
            result.append(text, copied, at - copied).append(*other);
            copied = at + piece.size();
        }
        at += piece.size();
    }
    return result.append(text, copied);
}

/// Whether a character that is not printable ASCII would affect the rest of the line.
bool is_control(char32_t value) {
    return value < 0xA0 || // controls
           value == 0x061C || value == 0x200E || value == 0x200F ||
           (value >= 0x2028 && value <= 0x202E) || // line ends, directions
           (value >= 0x2066 && value <= 0x2069) || value == 0xFEFF ||
           (value >= 0xFFF9 && value <= 0xFFFB) || (value >= 0xE0000 && value <= 0xE007F);
}

std::string formatted(const char* format, double number) {
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), format, number);
    return text.data();
}

std::string escaped(char32_t value) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), value <= UCHAR_MAX ? "\\x%02x" : "\\u%04x",
                  static_cast<unsigned>(value));
    return text.data();
}

/// The replacement in `as_utf8`.
std::optional<std::string> mapped_bytes(const Utf8Character& character, std::string_view piece) {
    std::optional<std::string> mapped;
    if (character.size == 0 || stands_for_byte(character.value)) {
        mapped.emplace();
        for (const char byte : piece) {
            append_utf8(*mapped, byte_base + static_cast<unsigned char>(byte));
        }
    }
    return mapped;
}

/// The replacement in `as_bytes`.
std::optional<std::string> mapped_byte(const Utf8Character& character, std::string_view /*piece*/) {
    std::optional<std::string> byte;
    if (stands_for_byte(character.value)) {
        byte.emplace(1, static_cast<char>(character.value - byte_base));
    }
    return byte;
}

/// Whether the user's locale, and therefore the terminal, has characters beyond ASCII.
bool has_wide_characters() {
    return MB_CUR_MAX > 1;
}

/// The columns of one character; -1 when the terminal cannot show it.
int width_of(const Utf8Character& character) {
    if (character.value < 0x80) {
        return 1;
    }
    return has_wide_characters() ? wcwidth(static_cast<wchar_t>(character.value)) : -1;
}

} // namespace

std::string as_utf8(std::string_view bytes) {
    return is_ascii(bytes) ? std::string(bytes) : replaced(bytes, mapped_bytes);
}

std::string as_bytes(std::string_view text) {
    return is_ascii(text) ? std::string(text) : replaced(text, mapped_byte);
}

std::string shown(std::string_view bytes) {
    return replaced(bytes, [](const Utf8Character& character, std::string_view piece) {
        std::optional<std::string> visible;
        if (character.size == 0) {
            visible = escaped(static_cast<unsigned char>(piece.front()));
        } else if (is_control(character.value)) {
            visible = escaped(character.value);
        }
        return visible;
    });
}

std::string_view folder_of(std::string_view path) {
    return path.substr(0, path.rfind('/') + 1); // npos + 1 is 0
}

std::string_view name_of(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

std::size_t columns(std::string_view text) {
    std::size_t width = 0;
    for_each_character(text, [&](const Utf8Character& character, std::string_view) {
        const int one = width_of(character);
        width += static_cast<std::size_t>(one < 0 ? 1 : one);
    });
    return width;
}

std::string cut_to(std::string_view text, std::size_t width) {
    const bool fits = columns(text) <= width;
    const std::string ellipsis = has_wide_characters() ? "\xE2\x80\xA6" : "~";
    const std::size_t room = fits || width == 0 ? width : width - 1;
    std::string start;
    std::size_t used = 0;
    bool is_full = false;
    for_each_character(text, [&](const Utf8Character& character, std::string_view piece) {
        const int one = width_of(character);
        const auto needed = static_cast<std::size_t>(one < 0 ? 1 : one);
        is_full = is_full || used + needed > room;
        if (!is_full) {
            start += one < 0 ? std::string_view("?") : piece;
            used += needed;
        }
    });
    return fits || width == 0 ? start : start + ellipsis;
}

std::string with_thousands(std::uint64_t number) {
    std::string text = std::to_string(number);
    for (std::size_t i = text.size(); i > 3; i -= 3) {
        text.insert(i - 3, ",");
    }
    return text;
}

std::string counted(std::uint64_t number, std::string_view thing) {
    return with_thousands(number) + ' ' + std::string(thing) + (number == 1 ? "" : "s");
}

std::string bytes_text(std::uint64_t bytes) {
    if (bytes < 1000) {
        return counted(bytes, "byte");
    }
    double amount = static_cast<double>(bytes);
    std::string_view unit;
    for (const std::string_view next : {"kB", "MB", "GB", "TB"}) {
        if (amount >= 999.95) { // would be rounded up to 1000.0
            amount /= 1000;
            unit = next;
        }
    }
    return formatted("%.1f ", amount) + std::string(unit);
}

std::string time_text(double seconds) {
    if (seconds < 9.95) {
        return formatted("%.1f s", seconds);
    }
    const auto whole = static_cast<std::uint64_t>(std::llround(seconds));
    const std::uint64_t minutes = whole / 60;
    if (minutes == 0) {
        return std::to_string(whole) + " s";
    }
    if (minutes < 60) {
        return std::to_string(minutes) + " min " + std::to_string(whole % 60) + " s";
    }
    return with_thousands(minutes / 60) + " h " + std::to_string(minutes % 60) + " min";
}

} // namespace lumo::library
