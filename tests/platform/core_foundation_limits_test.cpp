// Strings and numbers at the limits of their representations.
#include "core_foundation/encodings.h"
#include "core_foundation/objects.h"

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace lumo::platform {
namespace {

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
