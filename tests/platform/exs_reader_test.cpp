// Reading EXS24 files: every generation, every field, and every kind of damage.
#include "sampler/exs_reader.h"
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

std::optional<ExsInstrument> read(const std::string& bytes) {
    return read_exs({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

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
    const auto instrument = read(one_of_each(GetParam()));
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
    const auto instrument = read(one_of_each(GetParam()));
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
    const auto instrument = read(one_of_each(GetParam()));
    ASSERT_TRUE(instrument);
    ASSERT_EQ(instrument->samples.size(), 1U);
    EXPECT_EQ(instrument->samples[0].path, "/Users/ada/Sounds/saw.wav");
    EXPECT_EQ(instrument->samples[0].frames, 70001U);
}

TEST_P(ExsLayouts, ParametersAreRead) {
    const auto instrument = read(one_of_each(GetParam()));
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
        EXPECT_EQ(read(bytes.substr(0, size)).has_value(), ends.contains(size)) << size;
    }
}

std::string layout_name(const testing::TestParamInfo<ExsLayout>& layout) {
    std::string name(layout.param.name);
    std::erase_if(name, [](unsigned char letter) { return !std::isalnum(letter); });
    return name;
}

INSTANTIATE_TEST_SUITE_P(All, ExsLayouts, testing::ValuesIn(test::exs_layouts), layout_name);

TEST(ExsReader, InstrumentAloneHasNothingInIt) {
    const auto instrument = read(ExsBuilder().bytes());
    ASSERT_TRUE(instrument);
    EXPECT_TRUE(instrument->zones.empty());
    EXPECT_TRUE(instrument->groups.empty());
    EXPECT_TRUE(instrument->samples.empty());
}

TEST(ExsReader, RecordsKeepTheOrderOfTheirChunksWhereverTheseStand) {
    const auto instrument = read(ExsBuilder()
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
    const auto instrument = read(zone + ExsBuilder().bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->zones.size(), 1U);
}

TEST(ExsReader, UnknownChunksArePassedOver) {
    ExsBuilder builder;
    for (int type = 5; type < 0x40; ++type) {
        builder.chunk(type, std::string(static_cast<std::size_t>(type), 'x'));
    }
    const auto instrument = read(builder.zone({}).bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->zones.size(), 1U);
}

TEST(ExsReader, WithoutItsFlagASizeHasAllItsBits) {
    const auto instrument = read(ExsBuilder().chunk(10, std::string(0x9000, 'p')).zone({}).bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->zones.size(), 1U);
}

TEST(ExsReader, EachChunkFollowsItsOwnMagic) {
    const auto instrument =
        read(ExsBuilder().bytes() + ExsBuilder({.magic = "SOBT"}).zone({.loop_start = 7}).chunks() +
             ExsBuilder().zone({.loop_start = 8}).chunks());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->zones.at(0).loop_start, 7);
    EXPECT_EQ(instrument->zones.at(1).loop_start, 8);
}

TEST(ExsReader, FieldsBeyondAChunksEndHaveTheirDefaults) {
    const auto instrument = read(
        ExsBuilder().chunk(1, "", "zone").chunk(2, "", "group").chunk(3, "", "kick.wav").bytes());
    ASSERT_TRUE(instrument);
    const ExsZone& zone = instrument->zones.at(0);
    EXPECT_EQ(zone.name, "zone");
    EXPECT_EQ(zone.root_key, 60);
    EXPECT_EQ(zone.keys, ExsRange{});
    EXPECT_EQ(zone.velocities, ExsRange{});
    EXPECT_TRUE(zone.pitch_tracking);
    EXPECT_FALSE(zone.muted);
    EXPECT_FALSE(zone.loop_on);
    EXPECT_EQ(zone.fine_tune, 0);
    EXPECT_EQ(zone.volume, 0);
    EXPECT_EQ(zone.loop_start, 0);
    EXPECT_EQ(zone.loop_end, 0);
    EXPECT_EQ(zone.coarse_tune, 0);
    EXPECT_EQ(zone.pan, 0);
    EXPECT_EQ(zone.sample_start, 0);
    EXPECT_EQ(zone.sample_end, 0);
    EXPECT_EQ(zone.group, -1);
    EXPECT_EQ(zone.sample, -1);
    const ExsGroup& group = instrument->groups.at(0);
    EXPECT_EQ(group.name, "group");
    EXPECT_EQ(group.keys, ExsRange{});
    EXPECT_EQ(group.velocities, ExsRange{});
    EXPECT_FALSE(group.muted);
    EXPECT_EQ(group.volume, 0);
    EXPECT_EQ(group.pan, 0);
    EXPECT_FALSE(group.on_release);
    EXPECT_FALSE(group.release_decay);
    EXPECT_EQ(group.attack_offset, 0);
    EXPECT_FALSE(group.selection);
    EXPECT_EQ(instrument->samples.at(0).path, "kick.wav");
    EXPECT_EQ(instrument->samples.at(0).frames, 0U);
}

TEST(ExsReader, FieldCutByItsChunksEndHasItsDefault) {
    std::string content(94, '\0'); // ends within the sample number, whose bytes would be 0
    const auto instrument = read(ExsBuilder().chunk(1, content).bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->zones.at(0).group, 0);
    EXPECT_EQ(instrument->zones.at(0).sample, -1);
}

TEST(ExsReader, GroupCutWithinAFieldHasTheDefaultsFromThereOn) {
    constexpr std::size_t header = 84;
    for (const char* magic : {"TBOS", "SOBT"}) {
        const std::string whole = ExsBuilder({.magic = magic, .group = 132})
                                      .group({.options = 64,
                                              .release_decay = 0x01010101,
                                              .attack_offset = 0x01010101,
                                              .chosen_by = {3, 0, 0},
                                              .high_value = 9})
                                      .chunks();
        const auto cut_at = [&](std::size_t end) {
            const std::string content = whole.substr(header, end - header);
            return read(ExsBuilder({.magic = magic}).chunk(2, content).bytes())->groups.at(0);
        };
        EXPECT_EQ(cut_at(103).release_decay, std::nullopt) << magic;
        EXPECT_EQ(cut_at(104).release_decay, 0x01010101U) << magic;
        EXPECT_EQ(cut_at(143).attack_offset, 0) << magic;
        EXPECT_EQ(cut_at(144).attack_offset, 0x01010101) << magic;
        EXPECT_EQ(cut_at(168).selection, std::nullopt) << magic;
        EXPECT_EQ(cut_at(171).selection, (ExsSelection{0, {0, 127}})) << magic;
        EXPECT_EQ(cut_at(172).selection, (ExsSelection{0, {0, 9}})) << magic;
    }
}

TEST(ExsReader, ZoneCutWithinItsCropHasTheDefaultsFromThereOn) {
    constexpr std::size_t header = 84;
    for (const char* magic : {"TBOS", "SOBT"}) {
        const std::string whole =
            ExsBuilder({.magic = magic})
                .zone({.sample_start = 0x01010101, .sample_end = 0x02020202, .coarse_tune = 5})
                .chunks();
        const auto cut_at = [&](std::size_t end) {
            const std::string content = whole.substr(header, end - header);
            return read(ExsBuilder({.magic = magic}).chunk(1, content).bytes())->zones.at(0);
        };
        EXPECT_EQ(cut_at(99).sample_start, 0) << magic;
        EXPECT_EQ(cut_at(100).sample_start, 0x01010101) << magic;
        EXPECT_EQ(cut_at(103).sample_end, 0) << magic;
        EXPECT_EQ(cut_at(104).sample_end, 0x02020202) << magic;
        EXPECT_EQ(cut_at(164).coarse_tune, 0) << magic;
        EXPECT_EQ(cut_at(165).coarse_tune, 5) << magic;
    }
}

TEST(ExsReader, ReleaseDecayCountsOnlyWithItsOption) {
    const auto instrument = read(ExsBuilder()
                                     .group({.release_decay = 500})
                                     .group({.options = 64, .release_decay = 500})
                                     .bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->groups.at(0).release_decay, std::nullopt);
    EXPECT_EQ(instrument->groups.at(1).release_decay, 500U);
}

TEST(ExsReader, PanBeyondFullLeftOrRightIsThat) {
    const auto instrument =
        read(ExsBuilder().zone({.pan = -128}).zone({.pan = 127}).group({.pan = -101}).bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->zones.at(0).pan, -100);
    EXPECT_EQ(instrument->zones.at(1).pan, 100);
    EXPECT_EQ(instrument->groups.at(0).pan, -100);
}

TEST(ExsReader, VelocityRangeCountsOnlyWithItsOption) {
    const auto instrument =
        read(ExsBuilder().zone({.low_velocity = 20, .high_velocity = 40}).bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->zones.at(0).velocities, ExsRange{});
}

TEST(ExsReader, KeysAndVelocitiesStayMidiValues) {
    const auto instrument = read(ExsBuilder()
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
        read(ExsBuilder().zone({.loop_options = 2 | 4}).zone({.loop_options = 7}).bytes());
    ASSERT_TRUE(instrument);
    EXPECT_FALSE(instrument->zones.at(0).loop_on);
    EXPECT_TRUE(instrument->zones.at(1).loop_on);
}

TEST(ExsReader, MutedZoneIsRead) {
    const auto instrument = read(ExsBuilder().zone({.options = 16}).bytes());
    ASSERT_TRUE(instrument);
    EXPECT_TRUE(instrument->zones.at(0).muted);
}

TEST(ExsReader, AnyOfTheThreeConditionsCanBeTheController) {
    const auto instrument = read(ExsBuilder()
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

TEST(ExsReader, FileNameOutranksTheChunksOwnShortenedName) {
    const auto instrument = read(ExsBuilder()
                                     .sample({.name = "12_Legacy_Pulsar_SH101_C3.wav",
                                              .chunk_name = "12_Legacy_Pulsar#3BA81A.wav"})
                                     .sample({.name = "", .chunk_name = "kick.wav"})
                                     .bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->samples.at(0).path, "/Users/ada/Sounds/12_Legacy_Pulsar_SH101_C3.wav");
    EXPECT_EQ(instrument->samples.at(1).path, "/Users/ada/Sounds/kick.wav");
}

TEST(ExsReader, NamesEndAtTheirFirstZeroByte) {
    using namespace std::string_literals;
    const auto instrument = read(
        ExsBuilder().zone({.name = "Zone\0garbage"s}).zone({.name = std::string(64, 'n')}).bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->zones.at(0).name, "Zone");
    EXPECT_EQ(instrument->zones.at(1).name, std::string(64, 'n'));
}

TEST(ExsReader, NamesAreUtf8OrElseMacRoman) {
    const auto instrument = read(ExsBuilder()
                                     .zone({.name = "Fl\xC3\xB6te"})
                                     .zone({.name = "Fl\x9Ate"})
                                     .zone({.name = "\xA9 1998"})
                                     .sample({.directory = "/Users/ren\x8E", .name = "a.wav"})
                                     .bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->zones.at(0).name, "Fl\xC3\xB6te");
    EXPECT_EQ(instrument->zones.at(1).name, "Fl\xC3\xB6te");
    EXPECT_EQ(instrument->zones.at(2).name, "\xC2\xA9 1998");
    EXPECT_EQ(instrument->samples.at(0).path, "/Users/ren\xC3\xA9/a.wav");
}

TEST(ExsReader, NameCutWithinACharacterLosesThatAlone) {
    const std::string kana = "\xE3\x82\xAB";
    const std::string e_acute = "\x8E";
    std::string long_name;
    for (int i = 0; i < 22; ++i) {
        long_name += kana; // 66 bytes for 64
    }
    const auto instrument = read(ExsBuilder()
                                     .zone({.name = long_name})
                                     .zone({.name = "caf" + e_acute})
                                     .zone({.name = "caf\xC3"})
                                     .bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->zones.at(0).name, long_name.substr(0, 63));
    EXPECT_EQ(instrument->zones.at(1).name, "caf\xC3\xA9");
    EXPECT_EQ(instrument->zones.at(2).name, "caf\xE2\x88\x9A"); // a square root sign
}

TEST(ExsReader, FolderOfAnOldSystemIsOneBelowVolumes) {
    const auto instrument =
        read(ExsBuilder()
                 .sample({.directory = "Macintosh HD:Samples:Kit A:", .name = "kick.wav"})
                 .sample({.directory = "Vol:a", .name = "kick.wav"})
                 .sample({.directory = "Vol:in/out:", .name = "1/2.wav"})
                 .sample({.directory = "/Users/ada/a:b", .name = "kick.wav"})
                 .bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->samples.at(0).path, "/Volumes/Macintosh HD/Samples/Kit A/kick.wav");
    EXPECT_EQ(instrument->samples.at(1).path, "/Volumes/Vol/a/kick.wav");
    EXPECT_EQ(instrument->samples.at(2).path, "/Volumes/Vol/in:out/1:2.wav");
    EXPECT_EQ(instrument->samples.at(3).path, "/Users/ada/a:b/kick.wav");
}

TEST(ExsReader, FolderMayEndInASlashOrBeEmpty) {
    const auto instrument = read(ExsBuilder()
                                     .sample({.directory = "/Users/ada/", .name = "kick.wav"})
                                     .sample({.directory = "", .name = "kick.wav"})
                                     .bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->samples.at(0).path, "/Users/ada/kick.wav");
    EXPECT_EQ(instrument->samples.at(1).path, "kick.wav");
}

TEST(ExsReader, ParametersOfBothTablesCount) {
    const auto instrument = read(ExsBuilder().parameters({{7, -6}}, {{167, 42}}).bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->parameters.value(ExsParameter::output_volume), -6);
    EXPECT_EQ(instrument->parameters.value(ExsParameter::lfo_3_rate), 42);
}

TEST(ExsReader, StaleCountOfTheSecondTableHidesNothing) {
    for (const std::uint32_t count : {0U, 1U, 20U, 0xFFFFFFFFU}) {
        const auto instrument =
            read(ExsBuilder().parameters({}, {{167, 42}, {0, 9}, {7, -10}}, count).bytes());
        ASSERT_TRUE(instrument);
        EXPECT_EQ(instrument->parameters.value(ExsParameter::lfo_3_rate), 42) << count;
        EXPECT_EQ(instrument->parameters.value(ExsParameter::output_volume), -10) << count;
    }
}

TEST(ExsReader, UnknownParametersArePassedOver) {
    const auto instrument =
        read(ExsBuilder().parameters({{255, 1}}, {{535, 1}, {1024, 1}, {65535, -1}}).bytes());
    EXPECT_TRUE(instrument);
}

TEST(ExsReader, ParameterBeyondItsRangeIsAtItsEnd) {
    const auto instrument =
        read(ExsBuilder().parameters({{30, 32767}, {29, -1}, {5, -32768}, {82, 200}}).bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->parameters.value(ExsParameter::filter_cutoff), 1000);
    EXPECT_EQ(instrument->parameters.value(ExsParameter::filter_resonance), 0);
    EXPECT_EQ(instrument->parameters.value(ExsParameter::polyphony), 1);
    EXPECT_EQ(instrument->parameters.value(ExsParameter::amp_attack), 127);
}

TEST(ExsReader, FileMayHaveNoParameterChunkOrAnEmptyOne) {
    for (const std::string& bytes : {ExsBuilder().bytes(), ExsBuilder().chunk(4, "").bytes(),
                                     ExsBuilder().chunk(4, "\1\2").bytes()}) {
        const auto instrument = read(bytes);
        ASSERT_TRUE(instrument);
        EXPECT_EQ(instrument->parameters.value(ExsParameter::polyphony), 16);
        EXPECT_EQ(instrument->parameters.value(ExsParameter::output_volume), 0);
        EXPECT_EQ(instrument->parameters.value(ExsParameter::bend_up), 2);
        EXPECT_EQ(instrument->parameters.value(ExsParameter::bend_down), -1);
        EXPECT_EQ(instrument->parameters.value(ExsParameter::amp_sustain), 127);
        EXPECT_EQ(instrument->parameters.value(ExsParameter::lfo_2_rate), 98);
    }
}

TEST(ExsReader, ParameterTableBeyondItsChunkIsRefused) {
    using namespace std::string_literals;
    EXPECT_TRUE(read(ExsBuilder().chunk(4, "\2\0\0\0abcdef"s).bytes()));
    EXPECT_FALSE(read(ExsBuilder().chunk(4, "\3\0\0\0abcdef"s).bytes()));
    EXPECT_FALSE(read(ExsBuilder().chunk(4, "\xFF\xFF\xFF\xFFxyz").bytes()));
}

TEST(ExsReader, EmptyFileIsRefused) {
    EXPECT_FALSE(read(""));
}

TEST(ExsReader, FileWithoutAnInstrumentChunkIsRefused) {
    EXPECT_FALSE(read(ExsBuilder().zone({}).sample({}).chunks()));
}

TEST(ExsReader, BytesBehindTheLastChunkAreRefused) {
    EXPECT_FALSE(read(ExsBuilder().zone({}).bytes() + '\0'));
    EXPECT_FALSE(read(ExsBuilder().zone({}).bytes() + std::string(84, '\0')));
}

TEST(ExsReader, UnknownMagicIsRefused) {
    EXPECT_FALSE(read(ExsBuilder({.magic = "TBOX"}).zone({}).bytes()));
    EXPECT_FALSE(read(ExsBuilder().bytes() + ExsBuilder({.magic = "RIFF"}).zone({}).chunks()));
}

TEST(ExsReader, SizeThatLeavesTheFileIsRefused) {
    std::string bytes = ExsBuilder().zone({}).bytes();
    const std::size_t zone = 84 + 80;
    for (const char* size : {"\x89\0\0\0", "\0\0\0\x80", "\xFF\xFF\xFF\xFF"}) {
        bytes.replace(zone + 4, 4, size, 4);
        EXPECT_FALSE(read(bytes));
    }
}

TEST(ExsReader, SizeThatEndsWithinItsChunkIsRefused) {
    std::string bytes = ExsBuilder().zone({}).bytes();
    bytes[84 + 80 + 4] = 100; // instead of 136: what follows is not a chunk
    EXPECT_FALSE(read(bytes));
}

TEST(ExsReader, FileWhoseFirstBytesWereOverwrittenIsRefused) {
    std::string bytes = ExsBuilder().zone({}).sample({}).bytes();
    bytes.replace(0, 300, 300, '\7');
    EXPECT_FALSE(read(bytes));
}

} // namespace
} // namespace lumo::platform
