// A library that stands before the C library's `open` sees every sample, under its path as
// recorded. Here the test program itself does: it gives one file for everything below /recorded.
#include "audio_bytes.h"
#include "sampler/sample_file.h"
#include "support/temp_folder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sndfile.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdarg>
#include <string>
#include <string_view>
#include <vector>

namespace {

std::vector<std::string> asked_for; ///< the paths below /recorded that were opened
std::string given;                  ///< the file opened instead; empty: none

bool is_recorded(const char* path) {
    return std::string_view(path).starts_with("/recorded/");
}

int open_or_redirect(const char* path, int flags, mode_t mode) {
    if (is_recorded(path)) {
        asked_for.emplace_back(path);
        path = given.empty() ? path : given.c_str();
    }
    return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

} // namespace

extern "C" __attribute__((visibility("default"))) int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = va_arg(arguments, mode_t);
    va_end(arguments);
    return open_or_redirect(path, flags, mode);
}

extern "C" __attribute__((visibility("default"))) int open64(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = va_arg(arguments, mode_t);
    va_end(arguments);
    return open_or_redirect(path, flags, mode);
}

namespace lumo::platform {
namespace {

using namespace lumo::test;

using Paths = std::vector<std::string>;

class SampleRedirection : public testing::Test {
protected:
    TempFolder folder;
    void SetUp() override {
        asked_for.clear();
        given.clear();
    }
};

TEST_F(SampleRedirection, OpensTheFileThatIsGivenInstead) {
    for (const int format : {SF_FORMAT_WAV | SF_FORMAT_PCM_16, SF_FORMAT_CAF | SF_FORMAT_PCM_16,
                             SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III}) {
        given = folder / "moved";
        write_audio(given, format);
        EXPECT_EQ(open_sample("/recorded/kick.wav"), 0);
    }
    write_file(folder / "moved", "no audio");
    EXPECT_EQ(open_sample("/recorded/kick.wav"), not_an_audio_file);
}

TEST_F(SampleRedirection, AsksOnceForEachSample) {
    given = folder / "moved";
    write_audio(given, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    open_sample("/recorded/kick.wav");
    EXPECT_EQ(asked_for, Paths{"/recorded/kick.wav"});
}

TEST_F(SampleRedirection, AsksForEverySampleInOrderAlsoAfterAFailure) {
    const Paths paths{"/recorded/b.wav", "/recorded/a.wav", folder / "text", "/recorded/c.wav"};
    write_file(folder / "text", "no audio");
    EXPECT_EQ(open_samples(paths), file_not_found);
    EXPECT_EQ(asked_for, (Paths{"/recorded/b.wav", "/recorded/a.wav", "/recorded/c.wav"}));
}

TEST_F(SampleRedirection, AsksOnceForASampleThatIsNamedTwice) {
    EXPECT_EQ(open_samples(Paths{"/recorded/b.wav", "/recorded/a.wav", "/recorded/b.wav"}),
              file_not_found);
    EXPECT_EQ(asked_for, (Paths{"/recorded/b.wav", "/recorded/a.wav"}));
}

TEST_F(SampleRedirection, IsDecidedByTheFirstFailure) {
    write_file(folder / "text", "no audio");
    write_audio(folder / "kick.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    const std::string text = folder / "text";
    const std::string kick = folder / "kick.wav";
    EXPECT_EQ(open_samples(Paths{}), 0);
    EXPECT_EQ(open_samples(Paths{kick, kick}), 0);
    EXPECT_EQ(open_samples(Paths{kick, text, "/recorded/a.wav"}), not_an_audio_file);
    EXPECT_EQ(open_samples(Paths{"/recorded/a.wav", text, kick}), file_not_found);
}

} // namespace
} // namespace lumo::platform
