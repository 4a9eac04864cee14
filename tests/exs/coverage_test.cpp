// Counting layers per cell, compared with a test of each cell of each layer.
#include "coverage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

using lumo::exs::cover;
using lumo::exs::Coverage;
using lumo::exs::CoverageCounter;
using lumo::exs::Stacking;

bool covers(const Coverage& layer, std::size_t key, int bit) {
    return (layer[key] >> bit & 1) != 0;
}

Stacking counted_cell_by_cell(const std::vector<Coverage>& layers) {
    Stacking result;
    for (std::size_t key = 0; key < 128; ++key) {
        for (int bit = 0; bit < 64; ++bit) {
            const auto count = static_cast<std::int32_t>(
                std::count_if(layers.begin(), layers.end(),
                              [&](const Coverage& layer) { return covers(layer, key, bit); }));
            result.covered += count >= 1 ? 1 : 0;
            result.stacked += count >= 2 ? 1 : 0;
            result.highest = std::max(result.highest, count);
        }
    }
    return result;
}

Coverage random_layer(std::mt19937& random) {
    std::uniform_int_distribution<int> place(0, 127);
    Coverage layer{};
    for (int zones = place(random) % 4; zones > 0; --zones) {
        const auto [low_key, high_key] = std::minmax({place(random), place(random)});
        const auto [low_velocity, high_velocity] = std::minmax({place(random), place(random)});
        cover(layer, low_key, high_key, std::max(low_velocity, 1), std::max(high_velocity, 1));
    }
    return layer;
}

TEST(Coverage, SetsTheBitsOfAllKeysAndVelocitiesInItsRange) {
    Coverage layer{};
    cover(layer, 3, 5, 7, 64);
    for (int key = 0; key < 128; ++key) {
        for (int velocity = 1; velocity < 128; ++velocity) {
            const bool inside = key >= 3 && key <= 5 && velocity / 2 >= 3 && velocity / 2 <= 32;
            EXPECT_EQ(covers(layer, static_cast<std::size_t>(key), velocity / 2), inside);
        }
    }
}

TEST(Coverage, ReachesTheFirstAndTheLastVelocity) {
    Coverage layer{};
    cover(layer, 0, 0, 1, 127);
    cover(layer, 1, 1, 126, 127);
    cover(layer, 2, 2, 1, 1);
    EXPECT_EQ(layer[0], ~std::uint64_t{0});
    EXPECT_EQ(layer[1], std::uint64_t{1} << 63);
    EXPECT_EQ(layer[2], std::uint64_t{1});
}

TEST(CoverageCounter, WithoutLayersCountsNothing) {
    const Stacking stacking = CoverageCounter().stacking();
    EXPECT_EQ(stacking.covered, 0);
    EXPECT_EQ(stacking.stacked, 0);
    EXPECT_EQ(stacking.highest, 0);
}

TEST(CoverageCounter, CountsLikeLookingAtEachCellOfEachLayer) {
    std::mt19937 random(7);
    for (const std::size_t count : {1U, 2U, 3U, 15U, 16U, 17U, 32U, 100U, 256U, 1000U}) {
        CoverageCounter counter;
        std::vector<Coverage> layers(count);
        for (Coverage& layer : layers) {
            layer = random_layer(random);
            counter.add(layer);
        }
        const Stacking stacking = counter.stacking();
        const Stacking expected = counted_cell_by_cell(layers);
        EXPECT_EQ(stacking.covered, expected.covered) << count;
        EXPECT_EQ(stacking.stacked, expected.stacked) << count;
        EXPECT_EQ(stacking.highest, expected.highest) << count;
    }
}

TEST(CoverageCounter, CountsThousandsOfLayersOnOneCell) {
    Coverage layer{};
    cover(layer, 60, 60, 1, 1);
    CoverageCounter counter;
    for (int i = 0; i < 5000; ++i) {
        counter.add(layer);
    }
    EXPECT_EQ(counter.stacking().highest, 5000);
    EXPECT_EQ(counter.stacking().covered, 1);
}

} // namespace
