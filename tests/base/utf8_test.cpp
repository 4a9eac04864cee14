// Validation and decoding of UTF-8.
#include "base/utf8.h"

#include <gtest/gtest.h>

#include <string>

namespace lumo {
namespace {

TEST(Utf8, CharactersTakeOneToFourBytes) {
    const auto expect = [](std::string_view text, std::size_t size, char32_t value) {
        EXPECT_EQ(first_utf8_character(text).size, size) << text;
        EXPECT_EQ(first_utf8_character(text).value, value) << text;
        std::string written;
        append_utf8(written, value);
        EXPECT_EQ(written, text.substr(0, size));
    };
    expect("az", 1, U'a');
    expect(std::string(1, '\0'), 1, 0);
    expect("\x7Fz", 1, 0x7F);
    expect("\xC2\x80z", 2, 0x80);
    expect("\xDF\xBFz", 2, 0x7FF);
    expect("\xE0\xA0\x80z", 3, 0x800);
    expect("\xED\x9F\xBFz", 3, 0xD7FF);
    expect("\xEE\x80\x80z", 3, 0xE000);
    expect("\xEF\xBF\xBFz", 3, 0xFFFF);
    expect("\xF0\x90\x80\x80z", 4, 0x10000);
    expect("\xF4\x8F\xBF\xBFz", 4, 0x10FFFF);
}

TEST(Utf8, IsTextOfSuchCharactersOnly) {
    EXPECT_TRUE(is_utf8(""));
    EXPECT_TRUE(is_utf8("Caf\xC3\xA9 \xC2\xA9 \xEF\xBB\xBF \xF0\x9F\x98\x80"));
    for (const char* text :
         {"\x80", "x\xA9y", "\xC0\x80", "\xC1\xBF", "\xC3", "\xC3z", "\xE0\x9F\xBF", "\xE6\x97",
          "\xED\xA0\x80", "\xED\xBF\xBF", "\xF0\x8F\xBF\xBF", "\xF0\x9F\x98", "\xF4\x90\x80\x80",
          "\xF8\x88\x80\x80\x80", "\xF8\xA0\x80\x80", "\xFF"}) {
        EXPECT_FALSE(is_utf8(text)) << text;
    }
}

TEST(Utf8, IsAsciiWithoutAByteAbove7F) {
    for (std::size_t size = 0; size < 20; ++size) {
        std::string text(size, '\x7F');
        EXPECT_TRUE(is_ascii(text)) << size;
        EXPECT_TRUE(is_ascii(std::string_view(text + "\x80").substr(0, size))) << size;
        for (char& c : text) {
            c = '\x80';
            EXPECT_FALSE(is_ascii(text)) << size;
            c = '\0';
        }
    }
}

} // namespace
} // namespace lumo
