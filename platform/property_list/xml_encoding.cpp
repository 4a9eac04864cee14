// How CoreFoundation determines the encoding of an XML property list:
// 1. A byte order mark decides, and a declaration is then ignored.
// 2. A NUL among the first two bytes means UTF-16 without a mark. CoreFoundation then drops the
// first
//    unit and assumes the byte order of the host, so such a file is only readable when it begins
//    with white space; this reader does the same.
// 3. A file that starts with "<?xml" may declare encoding="..." before the next "?" or ">", exactly
// as
//    written here: no blanks, single or double quotes, which must be closed. Only letters and
//    digits of the name are significant.
// 4. Everything else is UTF-8.
#include "property_list/xml_encoding.h"

#include "core_foundation/encodings.h"
#include "property_list/utf8.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace lumo::platform {
namespace {

/// Appends `bytes`, converted to UTF-8, to `text`; false when the encoding does not define a byte.
using Converter = bool (*)(std::string_view bytes, std::string& text);

bool convert_latin_1(std::string_view bytes, std::string& text) {
    for (const char c : bytes) {
        append_utf8(text, static_cast<std::uint8_t>(c));
    }
    return true;
}

bool convert_windows_1252(std::string_view bytes, std::string& text) {
    for (const char c : bytes) {
        const char16_t character = from_windows_1252(static_cast<std::uint8_t>(c));
        if (character == 0 && c != 0) {
            return false;
        }
        append_utf8(text, character);
    }
    return true;
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
bool convert_utf16(std::string_view bytes, std::string& text) {
    for (std::size_t at = 0; at + 2 <= bytes.size(); at += 2) {
        char32_t c = unit_at<2, big_endian>(bytes, at);
        if (c >= 0xD800 && c < 0xE000) {
            const char32_t low = at + 4 <= bytes.size() ? unit_at<2, big_endian>(bytes, at + 2) : 0;
            if (c >= 0xDC00 || low < 0xDC00 || low >= 0xE000) {
                return true;
            }
            c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
            at += 2;
        }
        append_utf8(text, c);
    }
    return true;
}

template <bool big_endian>
bool convert_utf32(std::string_view bytes, std::string& text) {
    for (std::size_t at = 0; at + 4 <= bytes.size(); at += 4) {
        const char32_t c = unit_at<4, big_endian>(bytes, at);
        if (!is_unicode_scalar(c)) {
            return true;
        }
        append_utf8(text, c);
    }
    return true;
}

/// The encoding name that the tag at the start of `bytes` declares in quotes; nothing when there is
/// no declaration or its quotes are not closed.
std::optional<std::string_view> declared_encoding(std::string_view bytes) {
    constexpr std::string_view open = "<?xml";
    constexpr std::string_view word = "encoding=";
    if (!bytes.starts_with(open)) {
        return std::nullopt;
    }
    const std::string_view tag = bytes.substr(0, bytes.find_first_of("?>", open.size()));
    const std::size_t at = tag.find(word);
    if (at == tag.npos || at + word.size() == tag.size()) {
        return std::nullopt;
    }
    const char quote = tag[at + word.size()];
    const std::string_view name = bytes.substr(at + word.size() + 1);
    const std::size_t end = name.find(quote);
    if ((quote != '"' && quote != '\'') || end == name.npos) {
        return std::nullopt;
    }
    return name.substr(0, end);
}

/// The letters and digits of an encoding's name in lower case; other characters are ignored.
std::string plain_name(std::string_view name) {
    std::string plain;
    for (const char c : name) {
        if ((c >= '0' && c <= '9') || (c >= 'a' && c <= 'z')) {
            plain.push_back(c);
        } else if (c >= 'A' && c <= 'Z') {
            plain.push_back(static_cast<char>(c - 'A' + 'a'));
        }
    }
    return plain;
}

struct NamedConverter {
    std::string_view plain_name;
    Converter convert; ///< null: the bytes are UTF-8 already
};

/// The IANA names of the supported encodings. CoreFoundation reads US-ASCII as ISO-8859-1. It
/// rejects Mac Roman, whose constant is 0 and means "no encoding" there.
constexpr NamedConverter known_encodings[] = {
    {"utf8", nullptr},
    {"iso88591", convert_latin_1},
    {"iso885911987", convert_latin_1},
    {"isoir100", convert_latin_1},
    {"latin1", convert_latin_1},
    {"l1", convert_latin_1},
    {"ibm819", convert_latin_1},
    {"cp819", convert_latin_1},
    {"csisolatin1", convert_latin_1},
    {"usascii", convert_latin_1},
    {"ascii", convert_latin_1},
    {"us", convert_latin_1},
    {"ansix341968", convert_latin_1},
    {"ansix341986", convert_latin_1},
    {"iso646irv1991", convert_latin_1},
    {"iso646us", convert_latin_1},
    {"isoir6", convert_latin_1},
    {"ibm367", convert_latin_1},
    {"cp367", convert_latin_1},
    {"csascii", convert_latin_1},
    {"windows1252", convert_windows_1252},
    {"cp1252", convert_windows_1252},
};

const NamedConverter* encoding_named(std::string_view name) {
    const auto* found =
        std::ranges::find(known_encodings, plain_name(name), &NamedConverter::plain_name);
    return found == std::end(known_encodings) ? nullptr : found;
}

std::optional<std::string_view> converted(Converter convert, std::string_view bytes,
                                          std::string& storage) {
    storage.clear();
    return convert(bytes, storage) ? std::optional<std::string_view>{storage} : std::nullopt;
}

} // namespace

std::optional<std::string_view> xml_text(std::string_view bytes, std::string& storage) {
    using namespace std::string_view_literals;
    if (bytes.starts_with("\xEF\xBB\xBF")) {
        return bytes.substr(3);
    }
    if (bytes.starts_with("\xFF\xFE\0\0"sv)) {
        return converted(convert_utf32<false>, bytes.substr(4), storage);
    }
    if (bytes.starts_with("\0\0\xFE\xFF"sv)) {
        return converted(convert_utf32<true>, bytes.substr(4), storage);
    }
    if (bytes.starts_with("\xFE\xFF")) {
        return converted(convert_utf16<true>, bytes.substr(2), storage);
    }
    if (bytes.starts_with("\xFF\xFE") || bytes.substr(0, 2).find('\0') != bytes.npos) {
        return converted(convert_utf16<false>, bytes.substr(std::min<std::size_t>(2, bytes.size())),
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
