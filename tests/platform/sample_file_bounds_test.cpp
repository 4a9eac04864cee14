// Time and memory for sample files with hostile headers.
#include "in_child.h"
#include "sample_file_fixture.h"

#include <sndfile.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

namespace fs = std::filesystem;
using namespace std::string_literals;

namespace lumo::platform {
namespace {

using namespace lumo::test;

/// The number of bytes that this process has read so far.
std::uint64_t bytes_read() {
    std::ifstream stream("/proc/self/io");
    std::string label;
    std::uint64_t count = 0;
    stream >> label >> count; // rchar
    return count;
}

/// Opens the file in a child process. Fails when that takes 96 MiB more memory or reads 40 MiB.
testing::AssertionResult opens_within_bounds(const fs::path& path) {
    constexpr long max_kilobytes = 96 << 10;
    constexpr std::uint64_t max_read = 40 << 20;
    const int result = in_child([&] {
        rusage before{};
        getrusage(RUSAGE_SELF, &before);
        const std::uint64_t read_before = bytes_read();
        open_sample(path);
        rusage after{};
        getrusage(RUSAGE_SELF, &after);
        const bool is_small = after.ru_maxrss - before.ru_maxrss < max_kilobytes;
        const bool is_short = bytes_read() - read_before < max_read;
        return (is_small ? 0 : 1) + (is_short ? 0 : 2);
    });
    return result == 0 ? testing::AssertionSuccess()
                       : testing::AssertionFailure()
                             << path.filename() << ((result & 1) != 0 ? ": too much memory" : "")
                             << ((result & 2) != 0 ? ": read too much" : "");
}

TEST_F(SampleFile, WithAHostileHeaderTakesNeitherTimeNorMemory) {
    const std::string huge(8, '\xFF');
    const std::string beginnings[] = {
        "RIFF"s + huge.substr(0, 4) + "WAVEfmt " + huge,
        "RIFF"s + huge.substr(0, 4) + "WAVELIST\xFF\xFF\xFF\x7F"s + huge,
        "RIFF"s + huge.substr(0, 4) + "WAVEcue \xF0\xFF\xFF\x7F\xFF\xFF\xFF\x0F"s,
        "RF64"s + huge.substr(0, 4) + "WAVEds64\x1C\0\0\0"s + huge + huge + huge + huge,
        "FORM\x7F\xFF\xFF\xFF\x41IFFCOMM\x7F\xFF\xFF\xFF\xFF\xFF"s + huge,
        "FORM\x7F\xFF\xFF\xFF"s + "AIFFMARK\0\0\x10\0\xFF\xFF"s,
        "FORM\x7F\xFF\xFF\xFF"s + "AIFFCOMT\x7F\xFF\xFF\xFF\xFF\xFF"s,
        ".snd\xFF\xFF\xFF\xFF"s + huge + huge,
        "fLaC\0\xFF\xFF\xFF"s + huge,
        "fLaC\0\0\0\x22"s + std::string(34, '\1') + "\4\xFF\xFF\xFF\x10\0\0\0\xFF\xFF\xFF\xFF"s,
        "OggS\0\2"s + std::string(20, '\0') + "\xFF"s + std::string(255, '\xFF'),
        id3_tag(500) + "RIFF",
        "ID3\4\0\0\x7F\x7F\x7F\x7F"s,
    };
    int number = 0;
    for (const std::string& beginning : beginnings) {
        const fs::path file = folder / std::to_string(number++);
        write_file(file, beginning + std::string(1 << 20, '\xFF'));
        EXPECT_TRUE(opens_within_bounds(file));
        ASSERT_EQ(truncate(file.c_str(), off_t{1} << 36), 0); // 64 GiB, nearly all of it a hole
        EXPECT_TRUE(opens_within_bounds(file));
    }
}

TEST_F(SampleFile, WithMetadataWithoutAnEndTakesNeitherTimeNorMemory) {
    constexpr std::size_t stream_info_end = 42;
    constexpr std::streamoff largest = 0xFFFFFF;
    write_audio(path, SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
    std::string head = read_file(path).substr(0, stream_info_end);
    head[4] = '\0';                               // not the last metadata block
    for (const char* kind : {"\1", "\2", "\4"}) { // padding, application, comment
        std::ofstream stream(path, std::ios::binary | std::ios::trunc);
        stream << head;
        for (int block = 0; block < 100; ++block) {
            stream << kind << "\xFF\xFF\xFF" << std::string(8, '\0');
            stream.seekp(largest - 8, std::ios::cur);
        }
        stream << "\xFF\xF8";
        stream.close();
        EXPECT_TRUE(opens_within_bounds(path));
    }
}

TEST_F(SampleFile, OfValidAudioWithoutAnEndTakesNeitherTimeNorMemory) {
    for (const int format : {SF_FORMAT_WAV | SF_FORMAT_PCM_16, SF_FORMAT_AIFF | SF_FORMAT_PCM_16,
                             SF_FORMAT_FLAC | SF_FORMAT_PCM_16, SF_FORMAT_OGG | SF_FORMAT_VORBIS,
                             SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III}) {
        write_audio(path, format);
        ASSERT_EQ(truncate(path.c_str(), off_t{1} << 36), 0);
        EXPECT_TRUE(opens_within_bounds(path)) << std::hex << format;
    }
}

} // namespace
} // namespace lumo::platform
