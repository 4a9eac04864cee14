// Samples are opened through the C library, by their recorded paths.
#include "audio_bytes.h"
#include "recorded_opens.h"
#include "sampler/sample_file.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <sndfile.h>

#include <string>
#include <vector>

namespace lumo::platform {
namespace {

using namespace lumo::test;

using Paths = std::vector<std::string>;
using Samples = std::vector<SampleReference>;

/// References to audio samples at these paths.
Samples samples(const Paths& paths) {
    Samples references;
    for (const std::string& path : paths) {
        references.push_back({.path = path});
    }
    return references;
}

constexpr OSStatus not_found = -43;
constexpr OSStatus not_audio = 1954115647;

class SampleRedirection : public testing::Test {
protected:
    TempFolder folder;
    void SetUp() override { reset_opens(); }
};

TEST_F(SampleRedirection, OpensTheFileThatIsGivenInstead) {
    for (const int format : {SF_FORMAT_WAV | SF_FORMAT_PCM_16, SF_FORMAT_CAF | SF_FORMAT_PCM_16,
                             SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III}) {
        given_instead = folder / "moved";
        write_audio(given_instead, format);
        EXPECT_EQ(open_sample("/recorded/kick.wav"), 0);
    }
    write_file(folder / "moved", "no audio");
    EXPECT_EQ(open_sample("/recorded/kick.wav"), not_audio);
}

TEST_F(SampleRedirection, AsksOnceForEachSample) {
    given_instead = folder / "moved";
    write_audio(given_instead, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    open_sample("/recorded/kick.wav");
    EXPECT_EQ(asked_for, Paths{"/recorded/kick.wav"});
}

TEST_F(SampleRedirection, AsksForEverySampleInOrderAlsoAfterAFailure) {
    const Paths paths{"/recorded/b.wav", "/recorded/a.wav", folder / "text", "/recorded/c.wav"};
    write_file(folder / "text", "no audio");
    EXPECT_EQ(open_samples(samples(paths)), not_found);
    EXPECT_EQ(asked_for, (Paths{"/recorded/b.wav", "/recorded/a.wav", "/recorded/c.wav"}));
}

TEST_F(SampleRedirection, AsksOnceForASampleThatIsNamedTwice) {
    EXPECT_EQ(open_samples(samples({"/recorded/b.wav", "/recorded/a.wav", "/recorded/b.wav"})),
              not_found);
    EXPECT_EQ(asked_for, (Paths{"/recorded/b.wav", "/recorded/a.wav"}));
}

TEST_F(SampleRedirection, JudgesAFileThatIsNamedAsTwoKindsAsEach) {
    write_file(folder / "gm", bank_bytes("sfbk"));
    const std::string path = folder / "gm";
    const SampleReference as_bank{path, SampleKind::bank};
    EXPECT_EQ(open_samples(Samples{as_bank, as_bank}), 0);
    EXPECT_EQ(open_samples(Samples{as_bank, {path, SampleKind::audio}}), not_audio);
}

TEST_F(SampleRedirection, IsDecidedByTheFirstFailure) {
    write_file(folder / "text", "no audio");
    write_audio(folder / "kick.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    const std::string text = folder / "text";
    const std::string kick = folder / "kick.wav";
    EXPECT_EQ(open_samples({}), 0);
    EXPECT_EQ(open_samples(samples({kick, kick})), 0);
    EXPECT_EQ(open_samples(samples({kick, text, "/recorded/a.wav"})), not_audio);
    EXPECT_EQ(open_samples(samples({"/recorded/a.wav", text, kick})), not_found);
}

} // namespace
} // namespace lumo::platform
