// The first bytes of audio files: every frame length of MPEG audio, and the shortest heads that are
// recognised.
#include "platform/audio_bytes.h"
#include "sampler/audio_signature.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace lumo::platform {
namespace {

using namespace std::string_literals;

AudioHead head_of(const std::string& bytes) {
    return audio_head({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

std::uint64_t tag_size(const std::string& bytes) {
    return id3_tag_size({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

/// Whether `bytes` are recognised as `kind`, and all but the last of them are not.
void expect_shortest(const std::string& bytes, AudioHead kind) {
    EXPECT_EQ(head_of(bytes), kind) << bytes;
    EXPECT_EQ(head_of(bytes.substr(0, bytes.size() - 1)), AudioHead::unknown) << bytes;
}

// Bit rates in kbit/s of the indexes 1 to 14 (ISO/IEC 11172-3, 2.4.2.3; 13818-3, 2.4.2.3).
using Rates = std::array<unsigned, 14>;
constexpr std::array<Rates, 3> mpeg1_rates{
    {{32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448},
     {32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384},
     {32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320}}};
constexpr std::array<Rates, 3> mpeg2_rates{
    {{32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256},
     {8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160},
     {8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160}}};
constexpr std::array<unsigned, 3> mpeg1_sampling{44100, 48000, 32000};

struct Frame {
    unsigned version; ///< 3: MPEG-1, 2: MPEG-2, 0: MPEG-2.5
    unsigned layer;   ///< 1 to 3
    unsigned rate;    ///< index, 1 to 14
    unsigned sampling;
    unsigned padding;

    std::string header() const {
        return {'\xFF', static_cast<char>(0xE1 | version << 3 | (4 - layer) << 1),
                static_cast<char>(rate << 4 | sampling << 2 | padding << 1), '\0'};
    }

    std::size_t length() const {
        const Rates& rates = (version == 3 ? mpeg1_rates : mpeg2_rates)[layer - 1];
        const std::size_t bits = std::size_t{rates[rate - 1]} * 1000;
        const unsigned samples = mpeg1_sampling[sampling] / (version == 3   ? 1
                                                             : version == 2 ? 2
                                                                            : 4);
        if (layer == 1) {
            return (12 * bits / samples + padding) * 4;
        }
        return (layer == 3 && version != 3 ? 72 : 144) * bits / samples + padding;
    }

    std::string bytes(std::size_t size) const { return header() + std::string(size - 4, '\0'); }
};

TEST(AudioSignature, OfMpegAudioIsAFrameOfItsRateAndAnother) {
    for (const unsigned version : {3U, 2U, 0U}) {
        for (unsigned index = 0; index < 3 * 14 * 3 * 2; ++index) {
            const Frame frame{version, 1 + index % 3, 1 + index / 3 % 14, index / 42 % 3,
                              index / 126};
            const std::size_t length = frame.length();
            const auto followed_after = [&](std::size_t size) {
                return head_of(frame.bytes(size) + frame.bytes(100));
            };
            const auto place = testing::Message() << version << ' ' << index;
            EXPECT_EQ(followed_after(length), AudioHead::audio) << place;
            EXPECT_EQ(followed_after(length - 1), AudioHead::unknown) << place;
            EXPECT_EQ(followed_after(length + 1), AudioHead::unknown) << place;
        }
    }
}

TEST(AudioSignature, OfMpegAudioIsTheSameInTheSecondFrame) {
    const Frame frame{3, 3, 9, 0, 0};
    const std::string first = frame.bytes(frame.length());
    for (const Frame& other : {Frame{3, 3, 1, 0, 1}, Frame{3, 3, 14, 0, 0}}) {
        EXPECT_EQ(head_of(first + other.header()), AudioHead::audio);
    }
    for (const Frame& other : {Frame{2, 3, 9, 0, 0}, Frame{3, 2, 9, 0, 0}, Frame{3, 3, 9, 1, 0}}) {
        EXPECT_EQ(head_of(first + other.header()), AudioHead::unknown);
    }
}

TEST(AudioSignature, OfAStreamMayEndBeforeTheSecondHeader) {
    const Frame frame{3, 3, 9, 0, 0};
    const std::string mpeg = frame.bytes(frame.length());
    expect_shortest(mpeg, AudioHead::audio);
    EXPECT_EQ(head_of(mpeg + "xxx"), AudioHead::audio);
    EXPECT_EQ(head_of(mpeg + "xxxx"), AudioHead::unknown);
    const std::string adts = test::adts_frames(1, 100);
    expect_shortest(adts, AudioHead::audio);
    EXPECT_EQ(head_of(adts + "xxxxxx"), AudioHead::audio);
    EXPECT_EQ(head_of(adts + "xxxxxxx"), AudioHead::unknown);
    expect_shortest(test::adts_frames(1, 7), AudioHead::audio);
    EXPECT_EQ(head_of(test::adts_frames(1, 6) + "x"), AudioHead::unknown);
}

TEST(AudioSignature, OfAdtsHasASamplingIndexBelow13) {
    for (unsigned index = 0; index < 16; ++index) {
        std::string frame = test::adts_frames(1, 100);
        frame[2] = static_cast<char>((static_cast<unsigned char>(frame[2]) & 0xC3U) | index << 2);
        EXPECT_EQ(head_of(frame), index < 13 ? AudioHead::audio : AudioHead::unknown) << index;
    }
}

TEST(AudioSignature, OfAc3HasAnOldVersionAndAKnownSize) {
    const auto ac3 = [](unsigned sampling, unsigned size, unsigned version) {
        return head_of("\x0B\x77\x12\x34"s + static_cast<char>(sampling << 6 | size) +
                       static_cast<char>(version << 3) + '\0');
    };
    EXPECT_EQ(ac3(0, 0, 8), AudioHead::audio);
    EXPECT_EQ(ac3(2, 37, 10), AudioHead::audio);
    EXPECT_EQ(ac3(2, 37, 11), AudioHead::unknown);
    EXPECT_EQ(ac3(2, 38, 10), AudioHead::unknown);
    EXPECT_EQ(ac3(3, 37, 10), AudioHead::unknown);
    expect_shortest("\x0B\x77\x12\x34\0\x40\0"s, AudioHead::audio);
}

TEST(AudioSignature, OfAFileIsInItsFirstBytes) {
    expect_shortest("\0\0\0\x20"
                    "ftyp"s,
                    AudioHead::audio);
    expect_shortest("caff\0\1\0\0desc"s, AudioHead::audio);
    for (const char* bytes : {"RIFFsizeWAVE", "RIFXsizeWAVE", "RF64sizeWAVE", "FORMsizeAIFF",
                              "FORMsizeAIFC", "riff", ".snd", "dns.", "fLaC", "OggS"}) {
        expect_shortest(bytes, AudioHead::container);
    }
    expect_shortest("RIFFsizesfbk", AudioHead::bank);
    expect_shortest("RIFFsizeDLS ", AudioHead::bank);
    EXPECT_EQ(head_of("RIFXsizesfbk"), AudioHead::unknown);
    EXPECT_EQ(head_of("FORMsizeWAVE"), AudioHead::unknown);
}

TEST(AudioSignature, OfATagHasASizeOfSevenBitsAByteAndMayHaveAFooter) {
    EXPECT_EQ(tag_size("ID3\4\0\0\0\0\0\0"s), 10u);
    EXPECT_EQ(tag_size("ID3\4\0\0\0\0\0"s), 0u);
    EXPECT_EQ(tag_size("ID4\4\0\0\0\0\0\0"s), 0u);
    EXPECT_EQ(tag_size("ID3\4\0\0\0\0\1\2"s), 10u + 130);
    EXPECT_EQ(tag_size("ID3\4\0\0\x7F\x7F\x7F\x7F"s), 10u + 0xFFFFFFF);
    EXPECT_EQ(tag_size("ID3\4\0\0\xFF\x80\x80\x80"s), 10u + 0xFE00000);
    EXPECT_EQ(tag_size("ID3\4\0\x10\0\0\0\1"s), 10u + 1 + 10);
    EXPECT_EQ(tag_size("ID3\4\0\xEF\0\0\0\1"s), 10u + 1);
}

} // namespace
} // namespace lumo::platform
