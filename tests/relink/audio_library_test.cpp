// Look-ups made inside other libraries reach the session as well.
#include "support/temp_folder.h"
#include <lumo/relink.h>

#include <gtest/gtest.h>
#include <sndfile.h>

#include <filesystem>
#include <fstream>
#include <memory>

namespace lumo::exs {
namespace {

using Sound = std::unique_ptr<SNDFILE, int (*)(SNDFILE*)>;

/// Writes a second of silence in 8 bits.
void write_sound(const std::string& path) {
    SF_INFO info{};
    info.samplerate = 8000;
    info.channels = 1;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_U8;
    const Sound sound(sf_open(path.c_str(), SFM_WRITE, &info), sf_close);
    const std::vector<short> silence(8000);
    ASSERT_EQ(sf_write_short(sound.get(), silence.data(), 8000), 8000);
}

class OtherLibraries : public testing::Test {
protected:
    void SetUp() override {
        std::filesystem::create_directory(folder / "library");
        found = (folder / "library/kick.wav").string();
        write_sound(found);
        index.add_root((folder / "library").string());
        relink::begin(index);
    }

    /// Ends the session and checks that it redirected the missing file and nothing else.
    void TearDown() override {
        const relink::Result result = relink::end();
        EXPECT_EQ(result.relinked,
                  (std::vector<std::pair<std::string, std::string>>{{gone, found}}));
        EXPECT_TRUE(result.unresolved.empty());
    }

    test::TempFolder folder;
    SampleIndex index;
    std::string gone = (folder / "gone/kick.wav").string();
    std::string found;
};

TEST_F(OtherLibraries, LibsndfileOpensTheIndexedFile) {
    SF_INFO info{};
    const Sound sound(sf_open(gone.c_str(), SFM_READ, &info), sf_close);
    ASSERT_TRUE(sound);
    EXPECT_EQ(info.frames, 8000);
}

TEST_F(OtherLibraries, FileStreamsOpenTheIndexedFile) {
    std::ifstream stream(gone, std::ios::binary);
    std::string magic(4, ' ');
    EXPECT_TRUE(stream.read(magic.data(), 4));
    EXPECT_EQ(magic, "RIFF");
}

TEST_F(OtherLibraries, TheFileSystemLibrarySeesTheIndexedFile) {
    EXPECT_TRUE(std::filesystem::exists(gone));
    EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status(gone)));
    EXPECT_EQ(std::filesystem::file_size(gone), std::filesystem::file_size(found));
    EXPECT_EQ(std::filesystem::canonical(gone), found);
    EXPECT_TRUE(std::filesystem::equivalent(gone, found));
}

TEST_F(OtherLibraries, CopiesAreMadeFromTheIndexedFile) {
    const auto copy = folder / "copy of a kick";
    EXPECT_TRUE(std::filesystem::copy_file(gone, copy));
    EXPECT_EQ(std::filesystem::file_size(copy), std::filesystem::file_size(found));
}

} // namespace
} // namespace lumo::exs
