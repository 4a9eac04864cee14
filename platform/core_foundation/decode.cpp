// Decodes bytes into strings. UTF-8 and ISO 8859-1 are decoded into the string's storage directly,
// the other encodings through UTF-16 units.
#include "core_foundation/encodings.h"

#include <array>
#include <bit>
#include <string>

namespace lumo::platform {
namespace {

static_assert(std::endian::native == std::endian::little, "kCFStringEncodingUTF16 is decoded so");

// Mac OS Roman from 0x80 on.
constexpr std::array<char16_t, 128> mac_roman = {
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1, 0x00E0, 0x00E2, 0x00E4, 0x00E3,
    0x00E5, 0x00E7, 0x00E9, 0x00E8, 0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3,
    0x00F2, 0x00F4, 0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC, 0x2020, 0x00B0, 0x00A2, 0x00A3,
    0x00A7, 0x2022, 0x00B6, 0x00DF, 0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8,
    0x221E, 0x00B1, 0x2264, 0x2265, 0x00A5, 0x00B5, 0x2202, 0x2211, 0x220F, 0x03C0, 0x222B, 0x00AA,
    0x00BA, 0x03A9, 0x00E6, 0x00F8, 0x00BF, 0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB,
    0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5, 0x0152, 0x0153, 0x2013, 0x2014, 0x201C, 0x201D,
    0x2018, 0x2019, 0x00F7, 0x25CA, 0x00FF, 0x0178, 0x2044, 0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02,
    0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1, 0x00CB, 0x00C8, 0x00CD, 0x00CE,
    0x00CF, 0x00CC, 0x00D3, 0x00D4, 0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9, 0x0131, 0x02C6, 0x02DC,
    0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7,
};

// windows-1252 from 0x80 to 0x9F; 0 where it is undefined. From 0xA0 on it equals ISO 8859-1.
constexpr std::array<char16_t, 32> windows_1252 = {
    0x20AC, 0x0000, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x0000, 0x017D, 0x0000, 0x0000, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x0000, 0x017E, 0x0178,
};

char16_t from_mac_roman(unsigned char byte) noexcept {
    return mac_roman[byte - 0x80U];
}

char16_t from_windows_1252(unsigned char byte) noexcept {
    return byte >= 0xA0 ? byte : windows_1252[byte - 0x80U];
}

template <class FromByte>
Owned decode_single_bytes(std::string_view bytes, FromByte from_byte) {
    std::u16string units;
    units.reserve(bytes.size());
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        const char16_t unit = byte < 0x80 ? byte : from_byte(byte);
        if (unit == 0 && byte != 0) {
            return nullptr;
        }
        units.push_back(unit);
    }
    return make_string_utf16(units);
}

Owned decode_utf16(std::string_view bytes, std::endian order) {
    std::u16string units(bytes.size() / 2, u'\0');
    for (std::size_t i = 0; i < units.size(); ++i) {
        const auto first = static_cast<unsigned char>(bytes[2 * i]);
        const auto second = static_cast<unsigned char>(bytes[2 * i + 1]);
        units[i] = static_cast<char16_t>(order == std::endian::big ? first << 8 | second
                                                                   : second << 8 | first);
    }
    return make_string_utf16(units);
}

Owned decode_marked_utf16(std::string_view bytes) {
    const std::string_view mark = bytes.substr(0, 2);
    const bool is_little = mark == "\xFF\xFE";
    if (is_little || mark == "\xFE\xFF") {
        bytes.remove_prefix(2);
    }
    return decode_utf16(bytes, is_little ? std::endian::little : std::endian::big);
}

Owned decode_utf8(std::string_view bytes) {
    if (bytes.substr(0, 3) == "\xEF\xBB\xBF") {
        bytes.remove_prefix(3);
    }
    return make_string(bytes);
}

} // namespace

Owned decode(std::string_view bytes, CFStringEncoding encoding, bool is_external) {
    if (bytes.empty()) {
        return make_string_ascii(bytes);
    }
    switch (encoding) {
    case kCFStringEncodingUTF8:
        return decode_utf8(bytes);
    case kCFStringEncodingASCII:
    case kCFStringEncodingISOLatin1:
        return make_string_latin1(bytes);
    case kCFStringEncodingWindowsLatin1:
        return decode_single_bytes(bytes, from_windows_1252);
    case kCFStringEncodingMacRoman:
        return decode_single_bytes(bytes, from_mac_roman);
    case kCFStringEncodingUTF16:
        return is_external ? decode_marked_utf16(bytes) : decode_utf16(bytes, std::endian::native);
    case kCFStringEncodingUTF16BE:
        return decode_utf16(bytes, std::endian::big);
    case kCFStringEncodingUTF16LE:
        return decode_utf16(bytes, std::endian::little);
    default:
        return nullptr;
    }
}

} // namespace lumo::platform
