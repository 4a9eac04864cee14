// Texts from other programs: bytes that are not UTF-8, and the display of hostile names.
#include "base/utf8.h"
#include "text.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdint>
#include <ios>
#include <string>
#include <utility>

namespace {

using namespace lumo::library;
using namespace std::string_literals;

TEST(Text, BytesThatAreNoUtf8AreMappedAndComeBack) {
    const std::string all_bytes = [] {
        std::string bytes;
        for (int byte = 1; byte < 256; ++byte) {
            bytes += static_cast<char>(byte);
        }
        return bytes;
    }();
    for (const std::string& bytes :
         {""s, "plain"s, "caf\xc3\xa9"s, "caf\xe9"s, "\xff\xfe"s, "\xc3"s, "\xed\xa0\x80"s,
          "\xc0\xaf"s, "\xf4\x90\x80\x80"s, "\xe2\x82"s, all_bytes}) {
        const std::string text = as_utf8(bytes);
        EXPECT_TRUE(lumo::is_utf8(text)) << bytes;
        EXPECT_EQ(as_bytes(text), bytes);
    }
}

TEST(Text, CharactersOfTheMappingItselfComeBackToo) {
    const std::string mapped = as_utf8("\xe9");
    EXPECT_NE(as_utf8(mapped), mapped);
    EXPECT_EQ(as_bytes(as_utf8(mapped)), mapped);
    EXPECT_EQ(as_bytes(as_bytes(as_utf8(as_utf8("a\xe9")))), "a\xe9");
}

TEST(Text, OrdinaryTextIsShownAsItIs) {
    EXPECT_EQ(shown("Streicher \"gro\xc3\x9f\" <1>"), "Streicher \"gro\xc3\x9f\" <1>");
    EXPECT_EQ(shown("\xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d"), "\xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d");
}

TEST(Text, WhatWouldDoSomethingIsShownByItsNumber) {
    EXPECT_EQ(shown("\x1b[31mred\x07\r\n\t"), "\\x1b[31mred\\x07\\x0d\\x0a\\x09");
    EXPECT_EQ(shown("a\x7f\xc2\x9b"), "a\\x7f\\x9b");
    EXPECT_EQ(shown("\xe2\x80\xaegpj.exs"), "\\u202egpj.exs");
    EXPECT_EQ(shown("\xe2\x81\xa6x\xe2\x81\xa9\xe2\x80\x8f"), "\\u2066x\\u2069\\u200f");
    EXPECT_EQ(shown("caf\xe9"), "caf\\xe9");
}

TEST(Text, EachRangeOfControlsEndsWhereItShould) {
    const auto is_escaped = [](char32_t value) {
        std::string text;
        lumo::append_utf8(text, value);
        return shown(text) != text;
    };
    using Range = std::pair<char32_t, char32_t>;
    for (const auto& [first, last] :
         {Range{0x00, 0x1F}, Range{0x7F, 0x9F}, Range{0x061C, 0x061C}, Range{0x200E, 0x200F},
          Range{0x2028, 0x202E}, Range{0x2066, 0x2069}, Range{0xFEFF, 0xFEFF},
          Range{0xFFF9, 0xFFFB}, Range{0xE0000, 0xE007F}}) {
        EXPECT_TRUE(is_escaped(first) && is_escaped(last)) << std::hex << std::uint32_t{first};
        EXPECT_FALSE((first > 0 && is_escaped(first - 1)) || is_escaped(last + 1))
            << std::hex << std::uint32_t{first};
    }
}

/// Sets a locale for the test and restores the previous one.
class Locale {
public:
    explicit Locale(const char* name) { is_there = std::setlocale(LC_CTYPE, name); }
    ~Locale() { std::setlocale(LC_CTYPE, "C"); }
    bool is_there;
};

TEST(Text, IsMeasuredAndCutByColumns) {
    const Locale locale("C.UTF-8");
    ASSERT_TRUE(locale.is_there || std::setlocale(LC_CTYPE, "en_US.UTF-8"));
    EXPECT_EQ(columns("abc"), 3U);
    EXPECT_EQ(columns("e\xcc\x81"), 1U);                // a letter and its accent
    EXPECT_EQ(columns("\xe5\xbc\xa6\xe6\xa5\xbd"), 4U); // two wide characters
    EXPECT_EQ(cut_to("Strings", 7), "Strings");
    EXPECT_EQ(cut_to("Strings", 4), "Str\xe2\x80\xa6");
    EXPECT_EQ(cut_to("\xe5\xbc\xa6\xe6\xa5\xbd\xe5\xbc\xa6", 4), "\xe5\xbc\xa6\xe2\x80\xa6");
    EXPECT_EQ(cut_to("e\xcc\x81tude", 2), "e\xcc\x81\xe2\x80\xa6");
    EXPECT_EQ(cut_to("Strings", 0), "");
    EXPECT_EQ(cut_to("a\x7f\xc2\x80", 5), "a\x7f?"); // control characters of one and of two bytes
}

TEST(Text, IsAsciiWhereTheTerminalKnowsNothingElse) {
    const Locale locale("C");
    EXPECT_EQ(cut_to("caf\xc3\xa9 noir", 20), "caf? noir");
    EXPECT_EQ(cut_to("caf\xc3\xa9 noir", 6), "caf? ~");
}

TEST(Text, NumbersHaveTheirThousandsApart) {
    EXPECT_EQ(with_thousands(0), "0");
    EXPECT_EQ(with_thousands(999), "999");
    EXPECT_EQ(with_thousands(1000), "1,000");
    EXPECT_EQ(with_thousands(1234567), "1,234,567");
    EXPECT_EQ(counted(1, "sample"), "1 sample");
    EXPECT_EQ(counted(2000, "sample"), "2,000 samples");
}

TEST(Text, BytesAndTimesHaveFittingUnits) {
    EXPECT_EQ(bytes_text(1), "1 byte");
    EXPECT_EQ(bytes_text(999), "999 bytes");
    EXPECT_EQ(bytes_text(1000), "1.0 kB");
    EXPECT_EQ(bytes_text(999949), "999.9 kB");
    EXPECT_EQ(bytes_text(999950), "1.0 MB");
    EXPECT_EQ(bytes_text(999999), "1.0 MB");
    EXPECT_EQ(bytes_text(1234567890), "1.2 GB");
    EXPECT_EQ(bytes_text(2500000000000000), "2500.0 TB");
    EXPECT_EQ(time_text(0.44), "0.4 s");
    EXPECT_EQ(time_text(9.94), "9.9 s");
    EXPECT_EQ(time_text(9.95), "10 s");
    EXPECT_EQ(time_text(59.4), "59 s");
    EXPECT_EQ(time_text(59.5), "1 min 0 s");
    EXPECT_EQ(time_text(192), "3 min 12 s");
    EXPECT_EQ(time_text(3599), "59 min 59 s");
    EXPECT_EQ(time_text(3600), "1 h 0 min");
    EXPECT_EQ(time_text(7500), "2 h 5 min");
}

} // namespace
