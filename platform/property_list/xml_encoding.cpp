// How CoreFoundation determines the encoding of an XML property list:
// 1. A byte order mark decides, and a declaration is then ignored.
// 2. A NUL among the first two bytes means UTF-16 without a mark. CoreFoundation then drops the
//    first unit and assumes the byte order of the host, so such a file is only readable when it
//    begins with white space; this reader does the same.
// 3. A file that starts with "<?xml" may declare encoding="..." before the next "?" or ">", exactly
//    as written here: no blanks, single or double quotes, which must be closed. Only letters and
//    digits of the name are significant.
// 4. Everything else is UTF-8.
#include "property_list/xml_encoding.h"

#include "base/big_endian.h"
#include "base/characters.h"
#include "base/utf8.h"
#include "core_foundation/encodings.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace lumo::platform {
namespace {

/// The bytes in UTF-8, in `storage`, up to the first character that is invalid in UTF-16; nothing
/// when the encoding does not define a byte.
std::optional<std::string_view> converted(CFStringEncoding encoding, std::string_view bytes,
                                          std::string& storage) {
    const Owned string = decode(bytes, encoding, false);
    if (!string) {
        return std::nullopt;
    }
    const auto& units = as<String>(string.get());
    storage.resize(std::size_t{units.length} * 3); // no unit takes more in UTF-8
    storage.resize(encode(units, 0, units.length, kCFStringEncodingUTF8, 0, false,
                          reinterpret_cast<std::uint8_t*>(storage.data()), storage.size())
                       .bytes);
    return storage;
}

/// As `converted`, from UTF-32, in which no string can be made.
std::string_view converted_utf32(std::endian order, std::string_view bytes, std::string& storage) {
    storage.clear();
    for (; bytes.size() >= 4; bytes.remove_prefix(4)) {
        std::array<std::uint8_t, 4> unit{};
        std::copy_n(bytes.begin(), 4, unit.begin());
        if (order == std::endian::little) {
            std::reverse(unit.begin(), unit.end());
        }
        const auto c = static_cast<char32_t>(read_big_endian(unit.data(), 4));
        if (!is_unicode_scalar(c)) {
            break;
        }
        append_utf8(storage, c);
    }
    return storage;
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
        if (is_digit(c) || is_letter(c)) {
            plain.push_back(to_lower(c));
        }
    }
    return plain;
}

/// The encoding with this IANA name, a result of plain_name; nothing when it is not supported.
/// CoreFoundation reads US-ASCII as ISO-8859-1. It rejects Mac Roman, whose constant is 0 and means
/// "no encoding" there.
std::optional<CFStringEncoding> encoding_named(std::string_view name) {
    constexpr std::array<std::string_view, 19> latin1_names = {
        "iso88591", "iso885911987", "isoir100",    "latin1",        "l1",
        "ibm819",   "cp819",        "csisolatin1", "usascii",       "ascii",
        "us",       "ansix341968",  "ansix341986", "iso646irv1991", "iso646us",
        "isoir6",   "ibm367",       "cp367",       "csascii"};
    if (name == "utf8") {
        return kCFStringEncodingUTF8;
    }
    if (name == "windows1252" || name == "cp1252") {
        return kCFStringEncodingWindowsLatin1;
    }
    const bool is_latin1 = std::ranges::find(latin1_names, name) != latin1_names.end();
    return is_latin1 ? std::optional(CFStringEncoding{kCFStringEncodingISOLatin1}) : std::nullopt;
}

} // namespace

std::optional<std::string_view> xml_text(std::string_view bytes, std::string& storage) {
    using namespace std::string_view_literals;
    if (bytes.starts_with("\xEF\xBB\xBF")) {
        return bytes.substr(3);
    }
    if (bytes.starts_with("\xFF\xFE\0\0"sv)) {
        return converted_utf32(std::endian::little, bytes.substr(4), storage);
    }
    if (bytes.starts_with("\0\0\xFE\xFF"sv)) {
        return converted_utf32(std::endian::big, bytes.substr(4), storage);
    }
    if (bytes.starts_with("\xFE\xFF")) {
        return converted(kCFStringEncodingUTF16BE, bytes.substr(2), storage);
    }
    if (bytes.starts_with("\xFF\xFE") || bytes.substr(0, 2).find('\0') != bytes.npos) {
        return converted(kCFStringEncodingUTF16LE,
                         bytes.substr(std::min<std::size_t>(2, bytes.size())), storage);
    }
    const auto name = declared_encoding(bytes);
    if (!name) {
        return bytes;
    }
    const auto encoding = encoding_named(plain_name(*name));
    if (!encoding) {
        return std::nullopt;
    }
    return encoding == kCFStringEncodingUTF8 ? bytes : converted(*encoding, bytes, storage);
}

} // namespace lumo::platform
