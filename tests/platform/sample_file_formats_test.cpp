// Which files are accepted as samples and which are refused.
#include "in_child.h"
#include "sample_file_fixture.h"

#include <gtest/gtest.h>
#include <sndfile.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <iterator>
#include <string>

namespace fs = std::filesystem;
using namespace std::string_literals;

namespace lumo::platform {
namespace {

using namespace lumo::test;

// CoreAudio's error numbers.
constexpr OSStatus failed = -36;
constexpr OSStatus no_descriptor = -42;
constexpr OSStatus not_found = -43;
constexpr OSStatus not_permitted = -54;
constexpr OSStatus not_audio = 1954115647;

// --- accepted -----------------------------------------------------------------------------------

TEST_F(SampleFile, IsWhatLibsndfileWrites) {
    constexpr int containers[] = {SF_FORMAT_WAV,  SF_FORMAT_WAVEX, SF_FORMAT_RF64, SF_FORMAT_W64,
                                  SF_FORMAT_AIFF, SF_FORMAT_AU,    SF_FORMAT_CAF,  SF_FORMAT_FLAC};
    for (const int container : containers) {
        EXPECT_EQ(open_format(container | SF_FORMAT_PCM_16), 0) << std::hex << container;
        EXPECT_EQ(open_format(container | SF_FORMAT_PCM_24), 0) << std::hex << container;
    }
}

TEST_F(SampleFile, IsFloatingPointAndCompressedAudio) {
    EXPECT_EQ(open_format(SF_FORMAT_WAV | SF_FORMAT_FLOAT), 0);
    EXPECT_EQ(open_format(SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM), 0);
    EXPECT_EQ(open_format(SF_FORMAT_AIFF | SF_FORMAT_FLOAT), 0); // AIFC
    EXPECT_EQ(open_format(SF_FORMAT_CAF | SF_FORMAT_ALAC_16), 0);
    EXPECT_EQ(open_format(SF_FORMAT_OGG | SF_FORMAT_VORBIS), 0);
    EXPECT_EQ(open_format(SF_FORMAT_AU | SF_ENDIAN_LITTLE | SF_FORMAT_PCM_16), 0);
    EXPECT_EQ(open_format(SF_FORMAT_WAV | SF_ENDIAN_BIG | SF_FORMAT_PCM_16), 0); // RIFX
}

TEST_F(SampleFile, IsMpegAudioOfEveryLayer) {
    EXPECT_EQ(open_format(SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III), 0);
    EXPECT_EQ(open_bytes(mp3_frames(3)), 0);
    // Layer I, 32 kbit/s at 32 kHz: 48 bytes; layer II of MPEG-2, 64 kbit/s at 24 kHz: 384 bytes.
    const std::string layer1 = "\xFF\xFF\x18\x00"s + std::string(44, '\0');
    EXPECT_EQ(open_bytes(layer1 + layer1), 0);
    const std::string layer2 = "\xFF\xF5\x84\x00"s + std::string(380, '\0');
    EXPECT_EQ(open_bytes(layer2 + layer2), 0);
    // Layer III of MPEG-2.5, 8 kbit/s at 11.025 kHz: 52 bytes.
    const std::string layer3 = "\xFF\xE3\x10\x00"s + std::string(48, '\0');
    EXPECT_EQ(open_bytes(layer3 + layer3), 0);
}

TEST_F(SampleFile, IsASingleFrameThatFillsTheFile) {
    EXPECT_EQ(open_bytes(mp3_frames(1)), 0);
    EXPECT_EQ(open_bytes(adts_frames(1, 100)), 0);
}

TEST_F(SampleFile, IsWhatLibsndfileDoesNotRead) {
    EXPECT_EQ(open_bytes(mpeg4_head("M4A ")), 0);
    EXPECT_EQ(open_bytes(mpeg4_head("mp42")), 0);
    EXPECT_EQ(open_bytes(adts_frames(3, 200)), 0);
    EXPECT_EQ(open_bytes(adts_frames(2, 8191)), 0);
    EXPECT_EQ(open_bytes(ac3_head()), 0);
    EXPECT_EQ(open_bytes(core_audio_head("aac ")), 0);
    EXPECT_EQ(open_bytes(core_audio_head("opus")), 0);
}

TEST_F(SampleFile, IsAudioBehindATag) {
    EXPECT_EQ(open_bytes(id3_tag(100) + mp3_frames(3)), 0);
    EXPECT_EQ(open_bytes(id3_tag(300'000) + mp3_frames(3)), 0);
    EXPECT_EQ(open_bytes(id3_tag(10) + id3_tag(20'000) + adts_frames(3, 100)), 0);
    write_audio(path, SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
    EXPECT_EQ(open_bytes(id3_tag(5000) + read_file(path)), 0);
}

TEST_F(SampleFile, IsASoundBankOnlyWhereThatIsWanted) {
    for (const char* form : {"sfbk", "DLS "}) {
        write_file(path, bank_bytes(form));
        EXPECT_EQ(open_sample(path, SampleKind::bank), 0) << form;
        EXPECT_EQ(open_sample(path, SampleKind::audio), not_audio) << form;
    }
}

TEST_F(SampleFile, IsNoSoundBankWithoutTheFormOfOne) {
    const std::string banks[] = {bank_bytes("WAVE"),
                                 bank_bytes("dls "),
                                 "RIFF",
                                 "",
                                 bank_bytes("sfbk").substr(0, 11),
                                 "RIFX" + bank_bytes("sfbk").substr(4)};
    for (const std::string& bytes : banks) {
        write_file(path, bytes);
        EXPECT_EQ(open_sample(path, SampleKind::bank), not_audio) << bytes;
    }
    write_audio(path, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    EXPECT_EQ(open_sample(path, SampleKind::bank), not_audio);
    EXPECT_EQ(open_sample(folder / "absent.sf2", SampleKind::bank), not_found);
}

TEST_F(SampleFile, IsFoundThroughLinks) {
    write_audio(path, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    fs::create_symlink("kick.wav", folder / "link.wav");
    EXPECT_EQ(open_sample(folder / "link.wav"), 0);
}

TEST_F(SampleFile, IsRecognisedByItsBytesAndNotByItsName) {
    write_audio(folder / "kick.txt", SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    EXPECT_EQ(open_sample(folder / "kick.txt"), 0);
    EXPECT_EQ(open_bytes("Dear diary,"), not_audio);
}

// --- refused ------------------------------------------------------------------------------------

TEST_F(SampleFile, IsNotAnythingElse) {
    for (const std::string& bytes :
         {""s, "R"s, "RIFF"s, "RIFF\4\0\0\0WAVE"s, "RIFF\4\0\0\0AVI "s, "FORM\0\0\0\4ILBM"s,
          "caff"s, "caff\0\1\0\0"s, "ID3"s, "fLaC"s, "OggS"s, "root:x:0:0:root:/root:/bin/bash\n"s,
          std::string(100'000, '\0'), std::string(100'000, '\xFF')}) {
        EXPECT_EQ(open_bytes(bytes), not_audio) << bytes.substr(0, 20);
    }
}

TEST_F(SampleFile, IsNotATextThatBeginsLikeAFrame) {
    std::string text = "\xFF\xFE"s; // UTF-16's byte order mark
    for (const char letter : "half a page of text that goes on for a while"s) {
        text += letter + "\0"s;
    }
    EXPECT_EQ(open_bytes(text), not_audio);
    for (int doubling = 0; doubling < 4; ++doubling) {
        text += text;
    }
    EXPECT_EQ(open_bytes(text), not_audio);
}

TEST_F(SampleFile, IsNotAFrameFollowedBySomethingElse) {
    EXPECT_EQ(open_bytes(mp3_frames(1) + std::string(1000, 'x')), not_audio);
    EXPECT_EQ(open_bytes(adts_frames(1, 100) + std::string(1000, 'x')), not_audio);
    EXPECT_EQ(open_bytes(mp3_frames(1).substr(0, 300)), not_audio);
    EXPECT_EQ(open_bytes(adts_frames(1, 7).substr(0, 6)), not_audio);
}

TEST_F(SampleFile, IsNotAFrameWithImpossibleFields) {
    for (const std::string& header : {"\xFF\xFB\x00\xC4"s, "\xFF\xFB\xF0\xC4"s, "\xFF\xFB\x9C\xC4"s,
                                      "\xFF\xEB\x90\xC4"s, "\xFF\xF9\x90\xC4"s}) {
        EXPECT_EQ(open_bytes(header + std::string(5000, '\0')), not_audio);
    }
    std::string ac3 = ac3_head();
    ac3[4] = '\xD4'; // not a valid sampling rate
    EXPECT_EQ(open_bytes(ac3), not_audio);
    EXPECT_EQ(open_bytes(adts_frames(3, 3)), not_audio);
}

TEST_F(SampleFile, IsNotATagWithoutAudio) {
    EXPECT_EQ(open_bytes(id3_tag(1000)), not_audio);
    EXPECT_EQ(open_bytes(id3_tag(1000).substr(0, 500)), not_audio);
    EXPECT_EQ(open_bytes(id3_tag(1000) + std::string(5000, 'x')), not_audio);
    std::string tags;
    for (int i = 0; i < 16; ++i) {
        tags += id3_tag(0);
    }
    EXPECT_EQ(open_bytes(tags + mp3_frames(3)), 0);
    EXPECT_EQ(open_bytes(tags + id3_tag(0) + mp3_frames(3)), not_audio);
}

TEST_F(SampleFile, IsNotAnythingButARegularFile) {
    EXPECT_EQ(open_sample(folder.path()), not_audio);
    EXPECT_EQ(open_sample("/dev/zero"), not_audio);
    EXPECT_EQ(open_sample("/dev/null"), not_audio);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(open_sample(path), not_audio); // without waiting for a writer
    fs::remove(path);
    const int end = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.string().copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(end, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(open_sample(path), not_audio);
    close(end);
}

TEST_F(SampleFile, IsAbsent) {
    EXPECT_EQ(open_sample(path), not_found);
    EXPECT_EQ(open_sample(""), not_found);
    EXPECT_EQ(open_sample(folder / "no folder/kick.wav"), not_found);
    EXPECT_EQ(open_sample(folder / std::string(300, 'x')), not_found);
    fs::create_symlink("nowhere.wav", path);
    EXPECT_EQ(open_sample(path), not_found);
    EXPECT_EQ(open_sample(path / "kick.wav"), not_found);
    fs::create_symlink("loop.wav", folder / "loop.wav");
    EXPECT_EQ(open_sample(folder / "loop.wav"), not_found);
}

TEST_F(SampleFile, IsNotTheFileWhoseNameItsPathBeginsWith) {
    write_audio(path, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    EXPECT_EQ(open_sample(path.string() + "\0.wav"s), not_found);
}

TEST_F(SampleFile, MayNotBeReadable) {
    write_audio(path, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    fs::permissions(folder.path(), fs::perms::all);
    fs::permissions(path, fs::perms::none);
    EXPECT_EQ(in_child([&] {
                  become_nobody();
                  return open_sample(path) == not_permitted;
              }),
              1);
}

TEST_F(SampleFile, CannotBeOpenedWithoutAFreeDescriptor) {
    write_audio(path, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    EXPECT_EQ(in_child([&] {
                  const rlimit none{0, 0};
                  setrlimit(RLIMIT_NOFILE, &none);
                  return open_sample(path) == no_descriptor;
              }),
              1);
}

TEST_F(SampleFile, FailsWithTheDisk) {
    write_audio(path, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    EXPECT_EQ(in_child([&] {
                  return refuse({{SYS_pread64, EIO}}) && open_sample(path) == failed;
              }),
              1);
}

TEST_F(SampleFile, HasTheStatusOfTheErrorThatItMet) {
    const std::pair<int, OSStatus> statuses[] = {
        {ENOENT, not_found},       {ENOTDIR, not_found},    {ELOOP, not_found},
        {ENAMETOOLONG, not_found}, {EACCES, not_permitted}, {EPERM, not_permitted},
        {EMFILE, no_descriptor},   {ENFILE, no_descriptor}, {EIO, failed},
        {ENOMEM, failed},          {ENXIO, not_audio},      {ENODEV, not_audio},
    };
    write_audio(path, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    for (const auto& [error, status] : statuses) {
        EXPECT_EQ(in_child([&, met = error, expected = status] {
                      return refuse({{SYS_openat, met}}) && open_sample(path) == expected;
                  }),
                  1)
            << error;
    }
}

TEST_F(SampleFile, IsNotLeftOpen) {
    write_audio(path, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    const auto open_files = [] {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    };
    const auto before = open_files();
    open_sample(path);
    open_bytes("no audio");
    open_sample(folder.path());
    EXPECT_EQ(open_files(), before);
}

} // namespace
} // namespace lumo::platform
