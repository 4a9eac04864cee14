// Loading EXS24 instruments into a unit.
#include "audio_bytes.h"
#include "in_child.h"
#include "limited_reads.h"
#include "recorded_opens.h"
#include "sampler_host.h"
#include "support/exs_builder.h"
#include "support/state_paths.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <sndfile.h>
#include <sys/stat.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace lumo::test {
namespace {

using Paths = std::vector<std::string>;

constexpr OSStatus not_permitted = -54;

class ExsInstruments : public testing::Test {
protected:
    TempFolder folder;
    Sampler sampler;
    void SetUp() override { reset_opens(); }

    OSStatus load(const fs::path& path) const {
        const std::string bytes = path.string();
        const auto url = adopt(CFURLCreateFromFileSystemRepresentation(
            kCFAllocatorDefault, reinterpret_cast<const UInt8*>(bytes.data()),
            static_cast<CFIndex>(bytes.size()), false));
        const AUSamplerInstrumentData data{url.get(), kInstrumentType_EXS24,
                                           kAUSampler_DefaultMelodicBankMSB,
                                           kAUSampler_DefaultBankLSB, 0};
        return AudioUnitSetProperty(sampler.unit(), kAUSamplerProperty_LoadInstrument,
                                    kAudioUnitScope_Global, 0, &data, sizeof data);
    }
    OSStatus load(const ExsBuilder& builder) const {
        write_file(folder / "Pad.exs", builder.bytes());
        return load(folder / "Pad.exs");
    }
    StatePaths state() const { return state_paths(sampler.state().get()); }
};

/// An instrument with one zone for each of these samples.
ExsBuilder with_samples(const std::vector<fs::path>& paths) {
    ExsBuilder builder;
    for (std::size_t i = 0; i < paths.size(); ++i) {
        builder.zone({.sample = static_cast<std::int32_t>(i)});
    }
    for (const fs::path& path : paths) {
        builder.sample({.directory = path.parent_path(), .name = path.filename()});
    }
    return builder;
}

TEST_F(ExsInstruments, AreNotFoundWhereThereIsNoFile) {
    EXPECT_EQ(load(folder / "absent.exs"), not_found);
    EXPECT_EQ(load(folder / "absent" / "Pad.exs"), not_found);
}

TEST_F(ExsInstruments, AreInvalidWhenTheFileIsNone) {
    write_file(folder / "Pad.exs", "no instrument");
    EXPECT_EQ(load(folder / "Pad.exs"), kAudioUnitErr_InvalidFile);
    write_file(folder / "Pad.exs", "");
    EXPECT_EQ(load(folder / "Pad.exs"), kAudioUnitErr_InvalidFile);
    EXPECT_EQ(load(folder.path()), kAudioUnitErr_InvalidFile);
}

TEST_F(ExsInstruments, AreNotWaitedForInAPipe) {
    ASSERT_EQ(mkfifo((folder / "pipe.exs").c_str(), 0600), 0);
    EXPECT_EQ(load(folder / "pipe.exs"), kAudioUnitErr_InvalidFile);
}

/// Writes a valid instrument of `size` bytes: nearly all of it is a hole, the content of a chunk
/// that is not read.
void write_sparse_instrument(const fs::path& path, std::uint32_t size) {
    constexpr int unread_type = 40;
    constexpr std::size_t size_field = 4;
    const std::string instrument = ExsBuilder().bytes();
    std::string bytes = ExsBuilder().chunk(unread_type, "").bytes();
    const auto content = static_cast<std::uint32_t>(size - bytes.size());
    for (const unsigned byte : {0U, 1U, 2U, 3U}) {
        bytes[instrument.size() + size_field + byte] = static_cast<char>(content >> (8 * byte));
    }
    write_file(path, bytes);
    fs::resize_file(path, size);
}

TEST_F(ExsInstruments, MayHaveAGigabyteAndNoMore) {
    constexpr std::uint32_t max_size = std::uint32_t{1} << 30;
    write_sparse_instrument(folder / "Pad.exs", max_size);
    EXPECT_EQ(load(folder / "Pad.exs"), 0);
    write_sparse_instrument(folder / "Pad.exs", max_size + 1);
    EXPECT_EQ(load(folder / "Pad.exs"), kAudioUnitErr_InvalidFile);
}

TEST_F(ExsInstruments, AreReadInAsManyPiecesAsTheyComeIn) {
    const std::string bytes = ExsBuilder().zone({.sample = -1}).bytes();
    write_file(folder / "Pad.exs", bytes);
    const LimitedReads limited(100);
    EXPECT_EQ(load(folder / "Pad.exs"), 0);
    EXPECT_EQ(limited.room(), bytes.size()); // no read asked for bytes beyond the file's size
}

TEST_F(ExsInstruments, EndWhereTheirFileEndsWhateverItsSizeWas) {
    write_file(folder / "Pad.exs", ExsBuilder().zone({.sample = -1}).bytes());
    constexpr std::size_t instrument_chunk = 84 + 80;
    const auto load_up_to = [&](std::size_t size) {
        const LimitedReads limited(no_limit, size);
        return load(folder / "Pad.exs");
    };
    EXPECT_EQ(load_up_to(instrument_chunk), 0);
    EXPECT_EQ(load_up_to(instrument_chunk + 36), kAudioUnitErr_InvalidFile);
}

TEST_F(ExsInstruments, NeedPermissionToBeRead) {
    write_file(folder / "Pad.exs", ExsBuilder().bytes());
    fs::permissions(folder.path(), fs::perms::all);
    fs::permissions(folder / "Pad.exs", fs::perms::none);
    EXPECT_EQ(in_child([&] {
                  become_nobody(); // root may read every file
                  return load(folder / "Pad.exs") == not_permitted ? 0 : 1;
              }),
              0);
}

TEST_F(ExsInstruments, OfMoreLayersThanAStateCanNumberAreNotSupported) {
    ExsBuilder builder;
    for (int i = 0; i < 4096; ++i) {
        builder.group({}).zone({.group = i});
    }
    builder.sample({});
    EXPECT_EQ(load(builder), not_found); // its sample
    EXPECT_EQ(load(builder.group({}).zone({.group = 4096})), kAudioUnitErr_FormatNotSupported);
}

TEST_F(ExsInstruments, OpenTheSamplesThatSoundInTheOrderOfTheirChunks) {
    EXPECT_EQ(load(ExsBuilder()
                       .zone({.sample = 3})
                       .zone({.sample = 0})
                       .zone({.sample = 3})
                       .zone({.sample = -1})
                       .zone({.low_key = 60, .group = 0, .sample = 1})
                       .zone({.low_key = 60, .high_key = 59, .sample = 2})
                       .group({.high_key = 59})
                       .sample({.directory = "/recorded", .name = "z.wav"})
                       .sample({.directory = "/recorded", .name = "outside.wav"})
                       .sample({.directory = "/recorded", .name = "unused.wav"})
                       .sample({.directory = "/recorded", .name = "a.wav"})),
              not_found);
    EXPECT_EQ(asked_for, (Paths{"/recorded/z.wav", "/recorded/outside.wav", "/recorded/a.wav"}));
}

TEST_F(ExsInstruments, FailWithTheStatusOfTheFirstSampleThatFailed) {
    write_audio(folder / "kick.wav", wav);
    write_file(folder / "text.wav", "no audio");
    EXPECT_EQ(load(with_samples({folder / "kick.wav", folder / "text.wav", "/recorded/a.wav"})),
              not_audio);
    EXPECT_EQ(asked_for, (Paths{"/recorded/a.wav"}));
    EXPECT_EQ(load(with_samples({"/recorded/a.wav", folder / "text.wav"})), not_found);
    EXPECT_EQ(load(with_samples({folder / "kick.wav"})), 0);
}

TEST_F(ExsInstruments, ThatFailLeaveTheUnitAsItWas) {
    write_audio(folder / "kick.wav", wav);
    ASSERT_EQ(load(with_samples({folder / "kick.wav"})), 0);
    const StatePaths before = state();
    EXPECT_NE(load(with_samples({"/recorded/a.wav"})), 0);
    EXPECT_NE(load(folder / "absent.exs"), 0);
    EXPECT_EQ(state(), before);
}

TEST_F(ExsInstruments, AreInTheStateWithTheirSamples) {
    write_audio(folder / "kick.wav", wav);
    write_audio(folder / "snare.wav", wav);
    ASSERT_EQ(load(with_samples({folder / "kick.wav", folder / "snare.wav"})), 0);
    const StatePaths loaded = state();
    EXPECT_EQ(loaded.at("Instrument/name"), StateEntry("Pad.exs"));
    EXPECT_EQ(loaded.at("Instrument/Layers/0/Zones/1/waveform"), StateEntry(268435457.0));
    EXPECT_EQ(loaded.at("file-references/Sample:268435456"), StateEntry(folder / "kick.wav"));
    EXPECT_EQ(loaded.at("file-references/Sample:268435457"), StateEntry(folder / "snare.wav"));
    EXPECT_EQ(loaded.at("name"), StateEntry("Untitled"));
    EXPECT_EQ(loaded.at("voice count"), StateEntry(64.0));
}

TEST_F(ExsInstruments, AreInTheStateUnderTheRecordedPathsOfTheirSamples) {
    given_instead = folder / "moved.wav";
    write_audio(given_instead, wav);
    ASSERT_EQ(load(with_samples({"/recorded/kick.wav"})), 0);
    EXPECT_EQ(state().at("file-references/Sample:268435456"), StateEntry("/recorded/kick.wav"));
}

TEST_F(ExsInstruments, WithoutSamplesAreInTheStateToo) {
    ASSERT_EQ(load(ExsBuilder().zone({.sample = -1})), 0);
    EXPECT_EQ(state().at("file-references"), StateEntry("{}"));
    EXPECT_EQ(state().at("Instrument/Layers/0/Zones"), StateEntry("[]"));
}

TEST_F(ExsInstruments, TakeThePlaceOfTheOneBefore) {
    write_audio(folder / "kick.wav", wav);
    write_audio(folder / "snare.wav", wav);
    ASSERT_EQ(load(with_samples({folder / "kick.wav", folder / "snare.wav"})), 0);
    ASSERT_EQ(load(with_samples({folder / "kick.wav"})), 0);
    const StatePaths loaded = state();
    EXPECT_FALSE(loaded.contains("file-references/Sample:268435457"));
    EXPECT_FALSE(loaded.contains("Instrument/LFOs/240 again/ID"));
}

TEST_F(ExsInstruments, GiveAStateThatLoadsAgain) {
    write_audio(folder / "kick.wav", wav);
    ASSERT_EQ(load(with_samples({folder / "kick.wav"})), 0);
    const Ref<CFDictionaryRef> state = sampler.state();
    const Sampler other;
    ASSERT_EQ(other.set(state.get()), 0);
    EXPECT_TRUE(CFEqual(other.state().get(), state.get()));
}

TEST_F(ExsInstruments, LoseAByteOrderMarkInFrontOfTheirName) {
    const std::string name = "\xEF\xBB\xBF\xEF\xBB\xBFPad.exs";
    write_file(folder / name, ExsBuilder().bytes());
    ASSERT_EQ(load(folder / name), 0);
    EXPECT_EQ(state().at("Instrument/name"), StateEntry(name.substr(3)));
}

TEST_F(ExsInstruments, WithoutUtf8InTheirNameAreNamedAsTheirContentsAre) {
    write_file(folder / "Fl\x9Ate.exs", ExsBuilder().bytes());
    ASSERT_EQ(load(folder / "Fl\x9Ate.exs"), 0);
    EXPECT_EQ(state().at("Instrument/name"), StateEntry("Fl\xC3\xB6te.exs"));
}

} // namespace
} // namespace lumo::test
