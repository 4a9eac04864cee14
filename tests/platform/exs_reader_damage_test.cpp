// Reading EXS24 files that are damaged, or whose chunks end before a field.
#include "platform/exs_reading.h"
#include "support/exs_builder.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace lumo::platform {
namespace {

using test::ExsBuilder;

TEST(ExsReader, FieldsBeyondAChunksEndHaveTheirDefaults) {
    const auto instrument = instrument_in(
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
    const auto instrument = instrument_in(ExsBuilder().chunk(1, content).bytes());
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
            return instrument_in(ExsBuilder({.magic = magic}).chunk(2, content).bytes())
                ->groups.at(0);
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
            return instrument_in(ExsBuilder({.magic = magic}).chunk(1, content).bytes())
                ->zones.at(0);
        };
        EXPECT_EQ(cut_at(99).sample_start, 0) << magic;
        EXPECT_EQ(cut_at(100).sample_start, 0x01010101) << magic;
        EXPECT_EQ(cut_at(103).sample_end, 0) << magic;
        EXPECT_EQ(cut_at(104).sample_end, 0x02020202) << magic;
        EXPECT_EQ(cut_at(164).coarse_tune, 0) << magic;
        EXPECT_EQ(cut_at(165).coarse_tune, 5) << magic;
    }
}

TEST(ExsReader, ParameterTableBeyondItsChunkIsRefused) {
    using namespace std::string_literals;
    EXPECT_TRUE(instrument_in(ExsBuilder().chunk(4, "\2\0\0\0abcdef"s).bytes()));
    EXPECT_FALSE(instrument_in(ExsBuilder().chunk(4, "\3\0\0\0abcdef"s).bytes()));
    EXPECT_FALSE(instrument_in(ExsBuilder().chunk(4, "\xFF\xFF\xFF\xFFxyz").bytes()));
}

TEST(ExsReader, EmptyFileIsRefused) {
    EXPECT_FALSE(instrument_in(""));
}

TEST(ExsReader, FileWithoutAnInstrumentChunkIsRefused) {
    EXPECT_FALSE(instrument_in(ExsBuilder().zone({}).sample({}).chunks()));
}

TEST(ExsReader, BytesBehindTheLastChunkAreRefused) {
    EXPECT_FALSE(instrument_in(ExsBuilder().zone({}).bytes() + '\0'));
    EXPECT_FALSE(instrument_in(ExsBuilder().zone({}).bytes() + std::string(84, '\0')));
}

TEST(ExsReader, UnknownMagicIsRefused) {
    EXPECT_FALSE(instrument_in(ExsBuilder({.magic = "TBOX"}).zone({}).bytes()));
    EXPECT_FALSE(
        instrument_in(ExsBuilder().bytes() + ExsBuilder({.magic = "RIFF"}).zone({}).chunks()));
}

TEST(ExsReader, SizeThatLeavesTheFileIsRefused) {
    std::string bytes = ExsBuilder().zone({}).bytes();
    const std::size_t zone = 84 + 80;
    for (const char* size : {"\x89\0\0\0", "\0\0\0\x80", "\xFF\xFF\xFF\xFF"}) {
        bytes.replace(zone + 4, 4, size, 4);
        EXPECT_FALSE(instrument_in(bytes));
    }
}

TEST(ExsReader, SizeThatEndsWithinItsChunkIsRefused) {
    std::string bytes = ExsBuilder().zone({}).bytes();
    bytes[84 + 80 + 4] = 100; // instead of 136: what follows is not a chunk
    EXPECT_FALSE(instrument_in(bytes));
}

TEST(ExsReader, FileWhoseFirstBytesWereOverwrittenIsRefused) {
    std::string bytes = ExsBuilder().zone({}).sample({}).bytes();
    bytes.replace(0, 300, 300, '\7');
    EXPECT_FALSE(instrument_in(bytes));
}

} // namespace
} // namespace lumo::platform
