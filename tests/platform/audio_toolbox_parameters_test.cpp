// The bytes in which class info stores parameters.
#include "audio_bytes.h"
#include "audio_toolbox/sampler_parameters.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

namespace lumo::platform {
namespace {

using lumo::test::big_endian;

std::string head(std::uint32_t scope, std::uint32_t element, std::uint32_t count) {
    return big_endian(scope, 4) + big_endian(element, 4) + big_endian(count, 4);
}

std::string pair(std::uint32_t number, float value) {
    return big_endian(number, 4) + big_endian(std::bit_cast<std::uint32_t>(value), 4);
}

std::optional<SamplerParameters> read(const std::string& bytes, SamplerParameters before = {}) {
    return with_parameter_data(before,
                               {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

const std::string all =
    head(0, 0, 4) + pair(900, -6) + pair(901, 2) + pair(902, 23) + pair(903, -0.25F);
constexpr SamplerParameters all_values{-6, 2, 23, -0.25F};

TEST(SamplerParameters, AreReadFromOneRecord) {
    EXPECT_EQ(read(all), all_values);
}

TEST(SamplerParameters, AreWrittenAsTheyAreRead) {
    const auto bytes = parameter_data(all_values);
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), all);
}

TEST(SamplerParameters, ThatAreNotMentionedStay) {
    EXPECT_EQ(read(head(0, 0, 1) + pair(902, 5), all_values),
              (SamplerParameters{-6, 2, 5, -0.25F}));
    EXPECT_EQ(read("", all_values), all_values);
}

TEST(SamplerParameters, ThatAreUnknownArePassedOver) {
    EXPECT_EQ(read(head(0, 0, 3) + pair(899, 1) + pair(900, -6) + pair(1000, 1)),
              (SamplerParameters{-6, 0, 0, 0}));
}

TEST(SamplerParameters, OfOtherElementsAndScopesArePassedOver) {
    for (const std::string& other : {head(0, 1, 1), head(1, 0, 1), head(2, 7, 1), head(3, 0, 1)}) {
        EXPECT_EQ(read(std::string(other).append(pair(900, 9)).append(all)), all_values);
    }
}

TEST(SamplerParameters, OfAnUnknownScopeAreAnError) {
    EXPECT_EQ(read(head(5, 0, 0)), std::nullopt);
    EXPECT_EQ(read(all + head(0xFFFFFFFF, 0, 0)), std::nullopt);
}

TEST(SamplerParameters, InDataThatEndsTooEarlyAreReadAsFarAsItGoes) {
    EXPECT_EQ(read(all.substr(0, 11)), SamplerParameters{});
    EXPECT_EQ(read(all.substr(0, 43)), (SamplerParameters{-6, 2, 23, 0}));
    EXPECT_EQ(read(all + head(9, 9, 9).substr(0, 11)), all_values);
    EXPECT_EQ(read(head(0, 0, 0xFFFFFFFF) + pair(900, -6)), (SamplerParameters{-6, 0, 0, 0}));
    EXPECT_EQ(read(head(0, 1, 0xFFFFFFFF) + pair(900, -6)), SamplerParameters{});
}

TEST(SamplerParameters, KeepAnyValue) {
    const auto read_back = read(head(0, 0, 2) + pair(900, std::numeric_limits<float>::infinity()) +
                                pair(901, std::nanf("")));
    ASSERT_TRUE(read_back);
    EXPECT_TRUE(std::isinf(read_back->gain));
    EXPECT_TRUE(std::isnan(read_back->coarse_tune));
}

} // namespace
} // namespace lumo::platform
