// Formats that libsndfile can write are written by it; the others are assembled from their headers.
#include "audio_bytes.h"

#include <gtest/gtest.h>
#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

using namespace std::string_literals;

namespace lumo::test {

void write_audio(const std::filesystem::path& path, int format) {
    SF_INFO info{};
    info.samplerate = (format & SF_FORMAT_SUBMASK) == SF_FORMAT_OPUS ? 48000 : 44100;
    info.channels = 1;
    info.format = format;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    ASSERT_TRUE(file) << path << ": " << sf_strerror(nullptr);
    std::vector<float> tone(4410);
    for (std::size_t i = 0; i < tone.size(); ++i) {
        tone[i] = 0.5F * std::sin(static_cast<float>(i) / 20);
    }
    const auto frames = static_cast<sf_count_t>(tone.size());
    EXPECT_EQ(sf_write_float(file, tone.data(), frames), frames);
    sf_close(file);
}

std::string little_endian(std::uint64_t number, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i) {
        text.push_back(static_cast<char>(number >> (8 * i)));
    }
    return text;
}

std::string big_endian(std::uint64_t number, int bytes) {
    std::string text = little_endian(number, bytes);
    std::reverse(text.begin(), text.end());
    return text;
}

std::string mp3_frames(int count) {
    constexpr std::size_t length = 144 * 128'000 / 44'100;
    std::string frame = "\xFF\xFB\x90\xC4"s;
    frame.resize(length, '\0');
    std::string frames;
    for (int i = 0; i < count; ++i) {
        frames += frame;
    }
    return frames;
}

std::string adts_frames(int count, std::size_t length) {
    std::string frame = "\xFF\xF1\x50"s; // low complexity, 44.1 kHz
    frame += big_endian(0x80000000 | length << 13 | 0x1FFC, 4);
    frame.resize(length, '\x21');
    std::string frames;
    for (int i = 0; i < count; ++i) {
        frames += frame;
    }
    return frames;
}

std::string ac3_head() {
    std::string head = "\x0B\x77\x12\x34\x14\x40"s; // 48 kHz, 192 kbit/s, version 8
    head.resize(768, '\0');
    return head;
}

std::string mpeg4_head(std::string_view brand) {
    return big_endian(16, 4) + "ftyp" + std::string(brand) + big_endian(0, 4);
}

std::string core_audio_head(std::string_view codec) {
    return "caff\0\1\0\0desc"s + big_endian(32, 8) + big_endian(0x40E5888000000000, 8) +
           std::string(codec) + std::string(16, '\0') + big_endian(1, 4);
}

std::string id3_tag(std::size_t size) {
    std::string tag = "ID3\4\0\0"s;
    for (const int shift : {21, 14, 7, 0}) {
        tag.push_back(static_cast<char>(size >> shift & 0x7F));
    }
    return tag + std::string(size, '\0');
}

std::string bank_bytes(std::string_view form) {
    return "RIFF" + little_endian(16, 4) + std::string(form) + "LIST" + little_endian(4, 4) +
           "INFO";
}

} // namespace lumo::test
