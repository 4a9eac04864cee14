// How CoreFoundation finds the encoding of an XML property list:
// 1. A byte order mark decides, and a declaration is then ignored.
// 2. A NUL among the first two bytes means UTF-16 without a mark. CoreFoundation drops the first
//    unit there and takes the order of the host, so such a file only reads when it opens with white
//    space; we agree with it.
// 3. A file that starts with "<?xml" may declare encoding="..." in its first tag, byte by byte as
//    written here: no blank, any quote.
// 4. Everything else is UTF-8.
#include "property_list/xml_encoding.h"

#include "property_list/utf8.h"

#include <strings.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace lumo::platform {
namespace {

using Converter = void (*)(std::string_view bytes, std::string& text);

/// Unicode for the bytes 0x80 to 0x9F in windows-1252; those it leaves open stand for themselves.
constexpr std::array<char16_t, 32> windows_1252_controls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

void from_latin_1(std::string_view bytes, std::string& text) {
    for (const char c : bytes) {
        append_utf8(text, static_cast<std::uint8_t>(c));
    }
}

void from_windows_1252(std::string_view bytes, std::string& text) {
    for (const char c : bytes) {
        const auto byte = static_cast<std::uint8_t>(c);
        append_utf8(text, byte >= 0x80 && byte < 0xA0 ? windows_1252_controls[byte - 0x80u] : byte);
    }
}

template <std::size_t width, bool big_endian>
char32_t unit_at(std::string_view bytes, std::size_t at) {
    char32_t unit = 0;
    for (std::size_t i = 0; i < width; ++i) {
        const std::size_t place = big_endian ? i : width - 1 - i;
        unit = unit << 8 | static_cast<std::uint8_t>(bytes[at + place]);
    }
    return unit;
}

template <bool big_endian>
void from_utf16(std::string_view bytes, std::string& text) {
    for (std::size_t at = 0; at + 2 <= bytes.size(); at += 2) {
        char32_t c = unit_at<2, big_endian>(bytes, at);
        if (c >= 0xD800 && c < 0xE000) {
            const char32_t low = at + 4 <= bytes.size() ? unit_at<2, big_endian>(bytes, at + 2) : 0;
            if (c >= 0xDC00 || low < 0xDC00 || low >= 0xE000) {
                return;
            }
            c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
            at += 2;
        }
        append_utf8(text, c);
    }
}

template <bool big_endian>
void from_utf32(std::string_view bytes, std::string& text) {
    for (std::size_t at = 0; at + 4 <= bytes.size(); at += 4) {
        const char32_t c = unit_at<4, big_endian>(bytes, at);
        if (!is_unicode_scalar(c)) {
            return;
        }
        append_utf8(text, c);
    }
}

/// The quoted encoding name in the tag that `bytes` begin with; nothing when it has none.
std::optional<std::string_view> declared_encoding(std::string_view bytes) {
    constexpr std::string_view word = "encoding=";
    const std::string_view tag = bytes.substr(0, bytes.find("?>"));
    const std::size_t at = tag.find(word);
    if (!tag.starts_with("<?xml") || at == tag.npos || at + word.size() == tag.size()) {
        return std::nullopt;
    }
    const char quote = tag[at + word.size()];
    if (quote != '"' && quote != '\'') {
        return std::nullopt;
    }
    const std::string_view name = tag.substr(at + word.size() + 1);
    return name.substr(0, name.find(quote));
}

struct NamedConverter {
    const char* name;
    Converter convert; ///< null: the bytes are UTF-8 as they stand
};

/// CoreFoundation reads US-ASCII as ISO-8859-1. It refuses Mac Roman, whose code it takes for none.
constexpr NamedConverter known_encodings[] = {
    {"UTF-8", nullptr},           {"UTF8", nullptr},
    {"ISO-8859-1", from_latin_1}, {"ISO_8859-1", from_latin_1},
    {"latin1", from_latin_1},     {"US-ASCII", from_latin_1},
    {"ASCII", from_latin_1},      {"windows-1252", from_windows_1252},
    {"cp1252", from_windows_1252}};

const NamedConverter* encoding_named(std::string_view name) {
    for (const NamedConverter& known : known_encodings) {
        const std::string_view candidate = known.name;
        if (candidate.size() == name.size() &&
            strncasecmp(candidate.data(), name.data(), name.size()) == 0) {
            return &known;
        }
    }
    return nullptr;
}

std::string_view converted(Converter convert, std::string_view bytes, std::string& storage) {
    storage.clear();
    convert(bytes, storage);
    return storage;
}

} // namespace

std::optional<std::string_view> xml_text(std::string_view bytes, std::string& storage) {
    using namespace std::string_view_literals;
    if (bytes.starts_with("\xEF\xBB\xBF")) {
        return bytes.substr(3);
    }
    if (bytes.starts_with("\xFF\xFE\0\0"sv)) {
        return converted(from_utf32<false>, bytes.substr(4), storage);
    }
    if (bytes.starts_with("\0\0\xFE\xFF"sv)) {
        return converted(from_utf32<true>, bytes.substr(4), storage);
    }
    if (bytes.starts_with("\xFE\xFF")) {
        return converted(from_utf16<true>, bytes.substr(2), storage);
    }
    if (bytes.starts_with("\xFF\xFE") || bytes.substr(0, 2).find('\0') != bytes.npos) {
        return converted(from_utf16<false>, bytes.substr(std::min<std::size_t>(2, bytes.size())),
                         storage);
    }
    const auto name = declared_encoding(bytes);
    if (!name) {
        return bytes;
    }
    const NamedConverter* encoding = encoding_named(*name);
    if (!encoding) {
        return std::nullopt;
    }
    return encoding->convert ? converted(encoding->convert, bytes, storage) : bytes;
}

} // namespace lumo::platform
