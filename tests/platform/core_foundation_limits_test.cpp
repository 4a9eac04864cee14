// Strings and numbers at the limits of their representations.
#include "core_foundation/encodings.h"
#include "core_foundation/objects.h"

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace lumo::platform {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

std::u16string units_of(std::string_view bytes, CFStringEncoding encoding) {
    const Owned string = decode(bytes, encoding, false);
    std::u16string units;
    for (std::size_t i = 0; string && i < as<String>(string.get()).length; ++i) {
        units.push_back(static_cast<char16_t>(as<String>(string.get()).unit(i)));
    }
    return units;
}

/// The units from `first` to before `last` in UTF-8, up to the first that has no such form.
std::string utf8_of(std::u16string_view units, std::size_t first, std::size_t last) {
    const Owned string = make_string_utf16(units);
    std::array<std::uint8_t, 64> bytes{};
    const Encoded encoded = encode(as<String>(string.get()), first, last, kCFStringEncodingUTF8, 0,
                                   false, bytes.data(), bytes.size());
    return {reinterpret_cast<const char*>(bytes.data()), encoded.bytes};
}

TEST(Strings, HaveTwoUnitsForACharacterFromTenThousandHexadecimalOn) {
    for (const auto& [utf8, units] : {std::pair("\xEF\xBF\xBF", std::u16string(u"\uFFFF")),
                                      std::pair("\xF0\x90\x80\x80", std::u16string(u"\U00010000")),
                                      std::pair("\xF4\x8F\xBF\xBF", std::u16string(u"\U0010FFFF")),
                                      std::pair("\xEE\x80\x80", std::u16string(u"\uE000")),
                                      std::pair("\xED\x9F\xBF", std::u16string(u"\uD7FF"))}) {
        EXPECT_EQ(units_of(utf8, kCFStringEncodingUTF8), units) << utf8;
        EXPECT_EQ(utf8_of(units, 0, units.size()), utf8);
        EXPECT_EQ(utf8_of(u"\u00E9" + units, 1, 1 + units.size()), utf8);
    }
}

TEST(Strings, WithHalfAPairHaveNoUtf8) {
    const std::u16string pair = u"\U00010000";
    EXPECT_EQ(utf8_of(pair, 0, 1), "");
    EXPECT_EQ(utf8_of(pair, 1, 2), "");
    const char16_t reversed[] = {0xDC00, 0xD800, u'a'};
    EXPECT_EQ(utf8_of({reversed, 3}, 0, 3), "");
    const char16_t without_second[] = {0xDBFF, 0xDBFF};
    EXPECT_EQ(utf8_of({without_second, 2}, 0, 2), "");
    const char16_t before_second[] = {0xD800, 0xE000};
    EXPECT_EQ(utf8_of({before_second, 2}, 0, 2), "");
}

TEST(Strings, AreDecodedByteByByteAtTheEdgesOfTheTables) {
    EXPECT_EQ(units_of("\x7F\x80\x9F\xA0\xFF", kCFStringEncodingWindowsLatin1),
              u"\u007F\u20AC\u0178\u00A0\u00FF");
    EXPECT_EQ(units_of("\x7F\x80\xFF", kCFStringEncodingMacRoman), u"\u007F\u00C4\u02C7");
    EXPECT_EQ(units_of("\x7F\x80\xFF", kCFStringEncodingISOLatin1), u"\u007F\u0080\u00FF");
    EXPECT_EQ(units_of(std::string_view("a\0b", 3), kCFStringEncodingMacRoman),
              std::u16string_view(u"a\0b", 3));
    for (const char* undefined : {"\x81", "\x8D", "\x8F", "\x90", "\x9D"}) {
        EXPECT_FALSE(decode(undefined, kCFStringEncodingWindowsLatin1, false));
    }
}

/// Mac OS Roman from 0x80 on.
constexpr std::u16string_view mac_roman =
    u"\u00C4\u00C5\u00C7\u00C9\u00D1\u00D6\u00DC\u00E1\u00E0\u00E2\u00E4\u00E3"
    u"\u00E5\u00E7\u00E9\u00E8\u00EA\u00EB\u00ED\u00EC\u00EE\u00EF\u00F1\u00F3"
    u"\u00F2\u00F4\u00F6\u00F5\u00FA\u00F9\u00FB\u00FC\u2020\u00B0\u00A2\u00A3"
    u"\u00A7\u2022\u00B6\u00DF\u00AE\u00A9\u2122\u00B4\u00A8\u2260\u00C6\u00D8"
    u"\u221E\u00B1\u2264\u2265\u00A5\u00B5\u2202\u2211\u220F\u03C0\u222B\u00AA"
    u"\u00BA\u03A9\u00E6\u00F8\u00BF\u00A1\u00AC\u221A\u0192\u2248\u2206\u00AB"
    u"\u00BB\u2026\u00A0\u00C0\u00C3\u00D5\u0152\u0153\u2013\u2014\u201C\u201D"
    u"\u2018\u2019\u00F7\u25CA\u00FF\u0178\u2044\u20AC\u2039\u203A\uFB01\uFB02"
    u"\u2021\u00B7\u201A\u201E\u2030\u00C2\u00CA\u00C1\u00CB\u00C8\u00CD\u00CE"
    u"\u00CF\u00CC\u00D3\u00D4\uF8FF\u00D2\u00DA\u00DB\u00D9\u0131\u02C6\u02DC"
    u"\u00AF\u02D8\u02D9\u02DA\u00B8\u02DD\u02DB\u02C7";

/// windows-1252 from 0x80 to 0x9F, without the five bytes that are undefined.
constexpr std::u16string_view windows_1252 =
    u"\u20AC\u201A\u0192\u201E\u2026\u2020\u2021\u02C6\u2030\u0160\u2039\u0152"
    u"\u017D\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u02DC\u2122\u0161\u203A"
    u"\u0153\u017E\u0178";

TEST(Strings, AreDecodedFromEachByteOfTheOldEncodings) {
    std::string bytes;
    std::string defined;
    for (int byte = 0x80; byte < 0x100; ++byte) {
        bytes += static_cast<char>(byte);
        const std::string one(1, static_cast<char>(byte));
        if (byte < 0xA0 && decode(one, kCFStringEncodingWindowsLatin1, false)) {
            defined += one;
        }
    }
    EXPECT_EQ(units_of(bytes, kCFStringEncodingMacRoman), mac_roman);
    EXPECT_EQ(units_of(defined, kCFStringEncodingWindowsLatin1), windows_1252);
}

TEST(Strings, InAsciiHaveALossByteFor80AndAbove) {
    const Owned string = make_string_latin1("\x7F\x80");
    std::array<std::uint8_t, 4> bytes{};
    const auto encoded = [&](std::uint8_t loss_byte) {
        return encode(as<String>(string.get()), 0, 2, kCFStringEncodingASCII, loss_byte, false,
                      bytes.data(), bytes.size())
            .bytes;
    };
    EXPECT_EQ(encoded(0), 1u);
    EXPECT_EQ(encoded('?'), 2u);
    EXPECT_EQ(bytes[0], 0x7F);
    EXPECT_EQ(bytes[1], '?');
}

TEST(Strings, HaveAMaximumSizeUnlessItExceedsTheLargestNumber) {
    constexpr CFIndex max = std::numeric_limits<CFIndex>::max();
    EXPECT_EQ(CFStringGetMaximumSizeForEncoding(0, kCFStringEncodingUTF8), 0);
    EXPECT_EQ(CFStringGetMaximumSizeForEncoding(max / 3, kCFStringEncodingUTF8), max / 3 * 3);
    EXPECT_EQ(CFStringGetMaximumSizeForEncoding(max / 3 + 1, kCFStringEncodingUTF8), kCFNotFound);
}

TEST(Numbers, KeepTheirValueWhetherOrNotTheyAreShared) {
    for (std::int64_t value = -300; value < 600; ++value) {
        EXPECT_EQ(as<Number>(make_integer(value).get()).integer, value);
    }
    for (const std::int64_t value :
         {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
        EXPECT_EQ(as<Number>(make_integer(value).get()).integer, value);
    }
}

template <class T>
void expect_converted(double real, CFNumberType type, T value, bool is_exact) {
    const Owned number = make_real(real);
    T converted = 0;
    const auto* reference = reinterpret_cast<CFNumberRef>(number.get());
    EXPECT_EQ(CFNumberGetValue(reference, type, &converted), is_exact) << real;
    EXPECT_EQ(converted, value) << real;
}

template <class T>
void expect_limits(CFNumberType type) {
    constexpr T lowest = std::numeric_limits<T>::min();
    constexpr T highest = std::numeric_limits<T>::max();
    constexpr auto limit = -static_cast<double>(lowest);
    expect_converted(limit, type, highest, false);
    expect_converted(std::nextafter(-limit, -infinity), type, lowest, false);
    expect_converted(-limit, type, lowest, true);
    expect_converted(infinity, type, highest, false);
    expect_converted(-infinity, type, lowest, false);
    expect_converted(std::numeric_limits<double>::quiet_NaN(), type, T{0}, false);
    expect_converted(-1.0, type, T{-1}, true);
    expect_converted(-1.5, type, T{-1}, false);
}

TEST(Numbers, ThatAreRealBecomeTheNearestIntegers) {
    expect_limits<std::int32_t>(kCFNumberSInt32Type);
    expect_limits<std::int64_t>(kCFNumberSInt64Type);
    expect_converted(2147483647.0, kCFNumberSInt32Type, std::int32_t{2147483647}, true);
    expect_converted(2147483647.5, kCFNumberSInt32Type, std::int32_t{2147483647}, false);
}

TEST(Numbers, AreEqualToRealsUpToTheLimitsOf64Bits) {
    constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t highest = std::numeric_limits<std::int64_t>::max();
    EXPECT_TRUE(equal(make_integer(lowest).get(), make_real(-0x1p63).get()));
    EXPECT_EQ(hash(make_integer(lowest).get()), hash(make_real(-0x1p63).get()));
    EXPECT_FALSE(equal(make_integer(highest).get(), make_real(0x1p63).get()));
    EXPECT_FALSE(equal(make_integer(lowest).get(), make_real(-0x1.0000000000001p63).get()));
    EXPECT_TRUE(equal(make_integer(0).get(), make_real(0.0).get()));
    EXPECT_FALSE(equal(make_integer(0).get(), make_real(-0.0).get()));
    EXPECT_FALSE(equal(make_integer(1).get(), make_real(1.5).get()));
}

} // namespace
} // namespace lumo::platform
