// Which zones go into which layer, and which samples they use.
#include "sampler/exs_layers.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace lumo::platform {
namespace {

/// An instrument with one sample and `groups` groups.
ExsInstrument with_groups(std::size_t groups) {
    ExsInstrument instrument;
    instrument.samples.resize(1);
    instrument.groups.resize(groups);
    return instrument;
}

ExsZone zone(std::int32_t group, ExsRange keys = {}, ExsRange velocities = {}) {
    ExsZone zone;
    zone.group = group;
    zone.keys = keys;
    zone.velocities = velocities;
    zone.sample = 0;
    return zone;
}

TEST(ExsLayers, InstrumentWithoutZonesHasOneEmptyLayer) {
    const ExsInstrument instrument = with_groups(3);
    const auto layers = exs_layers(instrument);
    ASSERT_EQ(layers.size(), 1U);
    EXPECT_EQ(layers[0].group, nullptr);
    EXPECT_TRUE(layers[0].zones.empty());
}

TEST(ExsLayers, ZonesWithoutAGroupComeFirstThenTheGroupsInTheirOrder) {
    ExsInstrument instrument = with_groups(3);
    instrument.zones = {zone(2), zone(-1), zone(0), zone(2)};
    const auto layers = exs_layers(instrument);
    ASSERT_EQ(layers.size(), 3U);
    EXPECT_EQ(layers[0].group, nullptr);
    EXPECT_EQ(layers[1].group, &instrument.groups[0]);
    EXPECT_EQ(layers[2].group, &instrument.groups[2]);
    EXPECT_EQ(layers[2].zones.size(), 2U);
}

TEST(ExsLayers, WithoutUngroupedZonesTheFirstLayerIsAGroups) {
    ExsInstrument instrument = with_groups(1);
    instrument.zones = {zone(0)};
    const auto layers = exs_layers(instrument);
    ASSERT_EQ(layers.size(), 1U);
    EXPECT_EQ(layers[0].group, &instrument.groups[0]);
}

TEST(ExsLayers, GroupNumberOutOfRangeMeansNoGroup) {
    ExsInstrument instrument = with_groups(1);
    instrument.zones = {zone(1), zone(-2), zone(0x7FFFFFFF)};
    const auto layers = exs_layers(instrument);
    ASSERT_EQ(layers.size(), 1U);
    EXPECT_EQ(layers[0].group, nullptr);
    EXPECT_EQ(layers[0].zones.size(), 3U);
}

TEST(ExsLayers, ZonesWithoutASampleAreInNoLayer) {
    ExsInstrument instrument = with_groups(0);
    instrument.zones = {zone(-1), zone(-1), zone(-1), zone(-1)};
    instrument.zones[0].sample = -1;
    instrument.zones[1].sample = 1;
    instrument.zones[2].sample = -5;
    const auto layers = exs_layers(instrument);
    ASSERT_EQ(layers.size(), 1U);
    ASSERT_EQ(layers[0].zones.size(), 1U);
    EXPECT_EQ(layers[0].zones[0].zone, &instrument.zones[3]);
}

TEST(ExsLayers, ZonesOutsideTheirGroupStayWhole) {
    ExsInstrument instrument = with_groups(1);
    instrument.groups[0].keys = {40, 60};
    instrument.groups[0].velocities = {10, 100};
    instrument.zones = {zone(0, {0, 39}), zone(0, {61, 127}), zone(0, {}, {0, 9}),
                        zone(0, {60, 61}, {100, 127})};
    const auto layers = exs_layers(instrument);
    ASSERT_EQ(layers.size(), 1U);
    ASSERT_EQ(layers[0].zones.size(), 4U);
    EXPECT_EQ(layers[0].zones[0].zone, &instrument.zones[0]);
    EXPECT_EQ(layers[0].zones[1].zone, &instrument.zones[2]);
    EXPECT_EQ(layers[0].zones[2].zone, &instrument.zones[3]);
    EXPECT_EQ(layers[0].zones[3].zone, &instrument.zones[1]);
}

TEST(ExsLayers, ZoneThatNoKeyReachesIsDropped) {
    ExsInstrument instrument = with_groups(0);
    instrument.zones = {zone(-1, {60, 59}), zone(-1, {}, {2, 1}), zone(-1)};
    EXPECT_EQ(exs_layers(instrument)[0].zones.size(), 1U);
}

TEST(ExsLayers, ZonesAreOrderedByLowKeyEqualOnesAsInTheFile) {
    ExsInstrument instrument = with_groups(0);
    for (const int low : {36, 38, 40, 38, 0, 127}) {
        instrument.zones.push_back(zone(-1, {low, 127}));
    }
    const auto layers = exs_layers(instrument);
    std::vector<std::ptrdiff_t> order;
    for (const ExsPlacedZone& placed : layers[0].zones) {
        order.push_back(placed.zone - instrument.zones.data());
    }
    EXPECT_EQ(order, (std::vector<std::ptrdiff_t>{4, 0, 1, 3, 2, 5}));
}

TEST(ExsLayers, ZoneIsOffWhenItOrItsGroupIsMuted) {
    ExsInstrument instrument = with_groups(2);
    instrument.groups[1].muted = true;
    instrument.zones = {zone(0), zone(0), zone(1)};
    instrument.zones[1].muted = true;
    const auto layers = exs_layers(instrument);
    EXPECT_TRUE(layers[0].zones[0].enabled);
    EXPECT_FALSE(layers[0].zones[1].enabled);
    EXPECT_FALSE(layers[1].zones[0].enabled);
}

TEST(ExsLayers, UsedSamplesAreThoseOfPlacedZonesInTheOrderOfTheirChunks) {
    ExsInstrument instrument = with_groups(1);
    instrument.samples.resize(5);
    instrument.groups[0].keys = {0, 10};
    instrument.zones = {zone(-1), zone(-1), zone(-1), zone(0, {60, 60}), zone(-1, {60, 59})};
    instrument.zones[0].sample = 4;
    instrument.zones[1].sample = 1;
    instrument.zones[2].sample = 4;
    instrument.zones[3].sample = 3; // outside its group
    instrument.zones[4].sample = 2; // covers no key
    EXPECT_EQ(exs_used_samples(instrument, exs_layers(instrument)),
              (std::vector<std::size_t>{1, 3, 4}));
}

} // namespace
} // namespace lumo::platform
