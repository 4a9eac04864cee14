// Names and paths in EXS24 files.
#include "platform/exs_reading.h"
#include "support/exs_builder.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace lumo::platform {
namespace {

using test::ExsBuilder;

TEST(ExsReader, FileNameOutranksTheChunksOwnShortenedName) {
    const auto instrument = instrument_in(ExsBuilder()
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
    const auto instrument = instrument_in(
        ExsBuilder().zone({.name = "Zone\0garbage"s}).zone({.name = std::string(64, 'n')}).bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->zones.at(0).name, "Zone");
    EXPECT_EQ(instrument->zones.at(1).name, std::string(64, 'n'));
}

TEST(ExsReader, NamesAreUtf8OrElseMacRoman) {
    const auto instrument =
        instrument_in(ExsBuilder()
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
    const auto instrument = instrument_in(ExsBuilder()
                                              .zone({.name = long_name})
                                              .zone({.name = "caf" + e_acute})
                                              .zone({.name = "caf\xC3"})
                                              .zone({.name = "\xC3\xA9\xF0"})
                                              .zone({.name = "\xC3\xA9\xF0\x9F"})
                                              .zone({.name = "\xC3\xA9\xF0\x9F\x98"})
                                              .bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->zones.at(0).name, long_name.substr(0, 63));
    EXPECT_EQ(instrument->zones.at(1).name, "caf\xC3\xA9");
    EXPECT_EQ(instrument->zones.at(2).name, "caf\xE2\x88\x9A"); // a square root sign
    for (const std::size_t i : {3U, 4U, 5U}) {
        EXPECT_EQ(instrument->zones.at(i).name, "\xC3\xA9") << i;
    }
}

TEST(ExsReader, FolderOfAnOldSystemIsOneBelowVolumes) {
    const auto instrument =
        instrument_in(ExsBuilder()
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
    const auto instrument =
        instrument_in(ExsBuilder()
                          .sample({.directory = "/Users/ada/", .name = "kick.wav"})
                          .sample({.directory = "", .name = "kick.wav"})
                          .bytes());
    ASSERT_TRUE(instrument);
    EXPECT_EQ(instrument->samples.at(0).path, "/Users/ada/kick.wav");
    EXPECT_EQ(instrument->samples.at(1).path, "kick.wav");
}

} // namespace
} // namespace lumo::platform
