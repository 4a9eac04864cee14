// Kinds of ASCII characters, and big-endian numbers.
#include "base/big_endian.h"
#include "base/characters.h"

#include <gtest/gtest.h>

#include <array>
#include <string_view>

namespace lumo {
namespace {

constexpr std::string_view digits = "0123456789";
constexpr std::string_view upper = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr std::string_view lower = "abcdefghijklmnopqrstuvwxyz";

TEST(Characters, OfEachKindAreThoseOfAsciiOnly) {
    for (int i = -128; i < 128; ++i) {
        const char c = static_cast<char>(i);
        const bool is_upper = upper.find(c) != std::string_view::npos;
        const bool is_lower = lower.find(c) != std::string_view::npos;
        EXPECT_EQ(is_digit(c), digits.find(c) != std::string_view::npos) << i;
        EXPECT_EQ(is_letter(c), is_upper || is_lower) << i;
        EXPECT_EQ(to_lower(c), is_upper ? lower[upper.find(c)] : c) << i;
    }
}

TEST(BigEndian, NumbersHaveAnyWidth) {
    constexpr std::array<std::uint8_t, 9> bytes = {0x81, 0x82, 0x83, 0x84, 0x85,
                                                   0x86, 0x87, 0x88, 0x89};
    constexpr std::array<std::uint64_t, 10> numbers = {0,
                                                       0x81,
                                                       0x8182,
                                                       0x818283,
                                                       0x81828384,
                                                       0x8182838485,
                                                       0x818283848586,
                                                       0x81828384858687,
                                                       0x8182838485868788,
                                                       0x8283848586878889};
    for (std::size_t width = 0; width < numbers.size(); ++width) {
        EXPECT_EQ(read_big_endian(bytes.data(), width), numbers[width]) << width;
    }
}

} // namespace
} // namespace lumo
