// Reading EXS24 files: every generation and every field.
#include "platform/exs_reading.h"
#include "support/exs_builder.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstdint>
#include <set>
#include <string>

namespace lumo::platform {
namespace {

using test::ExsBuilder;
using test::ExsLayout;

/// A file with one chunk of each kind in the given layout.
std::string one_of_each(const ExsLayout& layout) {
    return ExsBuilder(layout)
        .zone({.name = "Zone #1",
               .options = 2 | 8,
               .root_key = 57,
               .fine_tune = -12,
               .volume = -9,
               .low_key = 48,
               .high_key = 59,
               .low_velocity = 3,
               .high_velocity = 100,
               .sample_start = 3000,
               .sample_end = 70000,
               .loop_start = 66000,
               .loop_end = 69000,
               .loop_options = 1,
               .coarse_tune = -18,
               .pan = -23,
               .group = 0,
               .sample = 0})
        .group({.name = "Soft",
                .volume = -3,
                .pan = 31,
                .options = 16 | 64,
                .low_velocity = 1,
                .high_velocity = 90,
                .low_key = 36,
                .high_key = 96,
                .release_decay = 70000,
                .attack_offset = -70000,
                .trigger = 1,
                .chosen_by = {3, 0, 0},
                .controller = 4,
                .low_value = 20,
                .high_value = 63})
        .sample({.directory = "/Users/ada/Sounds", .name = "saw.wav", .frames = 70001})
        .parameters({{7, -6}, {90, -48}, {30, 434}})
        .bytes();
}

class ExsLayouts : public testing::TestWithParam<ExsLayout> {};

TEST_P(ExsLayouts, ZoneIsReadWhole) {
    const auto instrument = instrument_in(one_of_each(GetParam()));
    ASSERT_TRUE(instrument);
    ASSERT_EQ(instrument->zones.size(), 1U);
    const ExsZone& zone = instrument->zones[0];
    EXPECT_EQ(zone.name, "Zone #1");
    EXPECT_EQ(zone.root_key, 57);
    EXPECT_EQ(zone.coarse_tune, -18);
    EXPECT_EQ(zone.fine_tune, -12);
    EXPECT_EQ(zone.volume, -9);
    EXPECT_EQ(zone.pan, -23);
    EXPECT_EQ(zone.keys, (ExsRange{48, 59}));
    EXPECT_EQ(zone.velocities, (ExsRange{3, 100}));
    EXPECT_FALSE(zone.pitch_tracking);
    EXPECT_FALSE(zone.muted);
    EXPECT_TRUE(zone.loop_on);
    EXPECT_EQ(zone.sample_start, 3000);
    EXPECT_EQ(zone.sample_end, 70000);
    EXPECT_EQ(zone.loop_start, 66000);
    EXPECT_EQ(zone.loop_end, 69000);
    EXPECT_EQ(zone.group, 0);
    EXPECT_EQ(zone.sample, 0);
}

TEST_P(ExsLayouts, GroupIsReadAsFarAsItsChunkReaches) {
    const auto instrument = instrument_in(one_of_each(GetParam()));
    ASSERT_TRUE(instrument);
    ASSERT_EQ(instrument->groups.size(), 1U);
    const ExsGroup& group = instrument->groups[0];
    EXPECT_EQ(group.name, "Soft");
    EXPECT_EQ(group.volume, -3);
    EXPECT_EQ(group.pan, 31);
    EXPECT_TRUE(group.muted);
    EXPECT_EQ(group.velocities, (ExsRange{1, 90}));
    EXPECT_EQ(group.keys, (ExsRange{36, 96}));
    EXPECT_TRUE(group.on_release);
    EXPECT_EQ(group.release_decay, 70000U);
    EXPECT_EQ(group.attack_offset, -70000);
    EXPECT_EQ(group.selection, (ExsSelection{4, {20, 63}}));
}

TEST_P(ExsLayouts, SampleIsReadWhole) {
    const auto instrument = instrument_in(one_of_each(GetParam()));
    ASSERT_TRUE(instrument);
    ASSERT_EQ(instrument->samples.size(), 1U);
    EXPECT_EQ(instrument->samples[0].path, "/Users/ada/Sounds/saw.wav");
    EXPECT_EQ(instrument->samples[0].frames, 70001U);
}

TEST_P(ExsLayouts, ParametersAreRead) {
    const auto instrument = instrument_in(one_of_each(GetParam()));
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->parameters.value(ExsParameter::output_volume), -6);
    EXPECT_EQ(instrument->parameters.value(ExsParameter::level_by_velocity), -48);
    EXPECT_EQ(instrument->parameters.value(ExsParameter::filter_cutoff), 434);
}

TEST_P(ExsLayouts, EveryCutWithinAChunkIsRefused) {
    const std::string bytes = one_of_each(GetParam());
    std::set<std::size_t> ends;
    for (std::size_t at = 0; at < bytes.size(); at = *ends.rbegin()) {
        const std::size_t magic = bytes.find(GetParam().magic, at + 20);
        ends.insert(magic == std::string::npos ? bytes.size() : magic - 16);
    }
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        EXPECT_EQ(instrument_in(bytes.substr(0, size)).has_value(), ends.contains(size)) << size;
    }
}

std::string layout_name(const testing::TestParamInfo<ExsLayout>& layout) {
    std::string name(layout.param.name);
    std::erase_if(name, [](unsigned char letter) { return !std::isalnum(letter); });
    return name;
}

INSTANTIATE_TEST_SUITE_P(All, ExsLayouts, testing::ValuesIn(test::exs_layouts), layout_name);

TEST(ExsReader, InstrumentAloneHasNothingInIt) {
    const auto instrument = instrument_in(ExsBuilder().bytes());
    ASSERT_TRUE(instrument);
    EXPECT_TRUE(instrument->zones.empty());
    EXPECT_TRUE(instrument->groups.empty());
    EXPECT_TRUE(instrument->samples.empty());
}

TEST(ExsReader, RecordsKeepTheOrderOfTheirChunksWhereverTheseStand) {
    const auto instrument = instrument_in(ExsBuilder()
                                              .sample({.name = "a.wav"})
                                              .zone({.name = "first"})
                                              .group({.name = "one"})
                                              .zone({.name = "second"})
                                              .sample({.name = "b.wav"})
                                              .group({.name = "two"})
                                              .bytes());
    ASSERT_TRUE(instrument);
    ASSERT_EQ(instrument->zones.size(), 2U);
    EXPECT_EQ(instrument->zones[1].name, "second");
    ASSERT_EQ(instrument->groups.size(), 2U);
    EXPECT_EQ(instrument->groups[1].name, "two");
    ASSERT_EQ(instrument->samples.size(), 2U);
    EXPECT_EQ(instrument->samples[1].path, "/Users/ada/Sounds/b.wav");
}

TEST(ExsReader, InstrumentChunkMayStandBehindTheOthers) {
    const std::string zone = ExsBuilder().zone({}).chunks();
    const auto instrument = instrument_in(zone + ExsBuilder().bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->zones.size(), 1U);
}

TEST(ExsReader, UnknownChunksArePassedOver) {
    ExsBuilder builder;
    for (int type = 5; type < 0x40; ++type) {
        builder.chunk(type, std::string(static_cast<std::size_t>(type), 'x'));
    }
    const auto instrument = instrument_in(builder.zone({}).bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->zones.size(), 1U);
}

TEST(ExsReader, WithoutItsFlagASizeHasAllItsBits) {
    const auto instrument =
        instrument_in(ExsBuilder().chunk(10, std::string(0x9000, 'p')).zone({}).bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->zones.size(), 1U);
}

TEST(ExsReader, EachChunkFollowsItsOwnMagic) {
    const auto instrument = instrument_in(
        ExsBuilder().bytes() + ExsBuilder({.magic = "SOBT"}).zone({.loop_start = 7}).chunks() +
        ExsBuilder().zone({.loop_start = 8}).chunks());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->zones.at(0).loop_start, 7);
    EXPECT_EQ(instrument->zones.at(1).loop_start, 8);
}

TEST(ExsReader, ReleaseDecayCountsOnlyWithItsOption) {
    const auto instrument = instrument_in(ExsBuilder()
                                              .group({.release_decay = 500})
                                              .group({.options = 64, .release_decay = 500})
                                              .bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->groups.at(0).release_decay, std::nullopt);
    EXPECT_EQ(instrument->groups.at(1).release_decay, 500U);
}

TEST(ExsReader, PanBeyondFullLeftOrRightIsThat) {
    const auto instrument = instrument_in(
        ExsBuilder().zone({.pan = -128}).zone({.pan = 127}).group({.pan = -101}).bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->zones.at(0).pan, -100);
    EXPECT_EQ(instrument->zones.at(1).pan, 100);
    EXPECT_EQ(instrument->groups.at(0).pan, -100);
}

TEST(ExsReader, VelocityRangeCountsOnlyWithItsOption) {
    const auto instrument =
        instrument_in(ExsBuilder().zone({.low_velocity = 20, .high_velocity = 40}).bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->zones.at(0).velocities, ExsRange{});
}

TEST(ExsReader, KeysAndVelocitiesStayMidiValues) {
    const auto instrument = instrument_in(ExsBuilder()
                                              .zone({.options = 8,
                                                     .root_key = 200,
                                                     .low_key = 130,
                                                     .high_key = 255,
                                                     .low_velocity = 128,
                                                     .high_velocity = 255})
                                              .bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->zones.at(0).root_key, 127);
    EXPECT_EQ(instrument->zones.at(0).keys, (ExsRange{127, 127}));
    EXPECT_EQ(instrument->zones.at(0).velocities, (ExsRange{127, 127}));
}

TEST(ExsReader, LoopIsOnByItsOwnBitAlone) {
    const auto instrument =
        instrument_in(ExsBuilder().zone({.loop_options = 2 | 4}).zone({.loop_options = 7}).bytes());
    ASSERT_TRUE(instrument);
    EXPECT_FALSE(instrument->zones.at(0).loop_on);
    EXPECT_TRUE(instrument->zones.at(1).loop_on);
}

TEST(ExsReader, MutedZoneIsRead) {
    const auto instrument = instrument_in(ExsBuilder().zone({.options = 16}).bytes());
    ASSERT_TRUE(instrument);
    EXPECT_TRUE(instrument->zones.at(0).muted);
}

TEST(ExsReader, AnyOfTheThreeConditionsCanBeTheController) {
    const auto instrument = instrument_in(ExsBuilder()
                                              .group({.chosen_by = {3, 0, 0}, .controller = 1})
                                              .group({.chosen_by = {1, 3, 0}, .controller = 2})
                                              .group({.chosen_by = {2, 1, 3}, .controller = 3})
                                              .group({.chosen_by = {1, 2, 4}, .controller = 4})
                                              .bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->groups.at(0).selection, (ExsSelection{1, {}}));
    EXPECT_EQ(instrument->groups.at(1).selection, (ExsSelection{2, {}}));
    EXPECT_EQ(instrument->groups.at(2).selection, (ExsSelection{3, {}}));
    EXPECT_EQ(instrument->groups.at(3).selection, std::nullopt);
}

TEST(ExsReader, ParametersOfBothTablesCount) {
    const auto instrument = instrument_in(ExsBuilder().parameters({{7, -6}}, {{167, 42}}).bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->parameters.value(ExsParameter::output_volume), -6);
    EXPECT_EQ(instrument->parameters.value(ExsParameter::lfo_3_rate), 42);
}

TEST(ExsReader, StaleCountOfTheSecondTableHidesNothing) {
    for (const std::uint32_t count : {0U, 1U, 20U, 0xFFFFFFFFU}) {
        const auto instrument = instrument_in(
            ExsBuilder().parameters({}, {{167, 42}, {0, 9}, {7, -10}}, count).bytes());
        ASSERT_TRUE(instrument);
        EXPECT_EQ(instrument->parameters.value(ExsParameter::lfo_3_rate), 42) << count;
        EXPECT_EQ(instrument->parameters.value(ExsParameter::output_volume), -10) << count;
    }
}

TEST(ExsReader, UnknownParametersArePassedOver) {
    const auto instrument = instrument_in(
        ExsBuilder().parameters({{255, 1}}, {{535, 1}, {1024, 1}, {65535, -1}}).bytes());
    EXPECT_TRUE(instrument);
}

TEST(ExsReader, ParameterBeyondItsRangeIsAtItsEnd) {
    const auto instrument = instrument_in(
        ExsBuilder().parameters({{30, 32767}, {29, -1}, {5, -32768}, {82, 200}}).bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->parameters.value(ExsParameter::filter_cutoff), 1000);
    EXPECT_EQ(instrument->parameters.value(ExsParameter::filter_resonance), 0);
    EXPECT_EQ(instrument->parameters.value(ExsParameter::polyphony), 1);
    EXPECT_EQ(instrument->parameters.value(ExsParameter::amp_attack), 127);
}

TEST(ExsReader, FileMayHaveNoParameterChunkOrAnEmptyOne) {
    for (const std::string& bytes : {ExsBuilder().bytes(), ExsBuilder().chunk(4, "").bytes(),
                                     ExsBuilder().chunk(4, "\1\2").bytes()}) {
        const auto instrument = instrument_in(bytes);
        ASSERT_TRUE(instrument);
        EXPECT_EQ(instrument->parameters.value(ExsParameter::polyphony), 16);
        EXPECT_EQ(instrument->parameters.value(ExsParameter::output_volume), 0);
        EXPECT_EQ(instrument->parameters.value(ExsParameter::bend_up), 2);
        EXPECT_EQ(instrument->parameters.value(ExsParameter::bend_down), -1);
        EXPECT_EQ(instrument->parameters.value(ExsParameter::amp_sustain), 127);
        EXPECT_EQ(instrument->parameters.value(ExsParameter::lfo_2_rate), 98);
    }
}

} // namespace
} // namespace lumo::platform
