// Files are identified by the magic numbers of their containers (ISO/IEC 14496-12, Apple's Core
// Audio Format). A bare stream has no such number, only a header of a few bits in each frame
// (ISO/IEC 11172-3 and 13818-3 for MPEG audio layers I to III, 13818-7 for ADTS, ATSC A/52 for
// AC-3), which random data and UTF-16 text can match. Therefore the fields are checked, and for
// MPEG audio and ADTS, whose headers give the frame's length, a second frame of the same kind must
// follow.
#include "sampler/audio_signature.h"

#include "base/big_endian.h"

#include <array>
#include <cstring>
#include <string_view>

namespace lumo::platform {
namespace {

using Bytes = std::span<const std::uint8_t>;

bool has_text_at(Bytes head, std::size_t at, std::string_view text) {
    return head.size() >= at + text.size() &&
           std::memcmp(head.data() + at, text.data(), text.size()) == 0;
}

/// The fields of a frame header: 11 one bits, then version, layer, protection, bit rate, sampling
/// rate, padding.
struct MpegHeader {
    std::uint32_t bits;

    std::uint32_t version() const { return bits >> 19 & 3; }     ///< 3: 1, 2: 2, 0: 2.5
    std::uint32_t layer() const { return 4 - (bits >> 17 & 3); } ///< 4: none
    std::uint32_t rate_index() const { return bits >> 12 & 15; }
    std::uint32_t sampling_index() const { return bits >> 10 & 3; }
    std::uint32_t padding() const { return bits >> 9 & 1; }
    bool is_mpeg1() const { return version() == 3; }
    bool is_valid() const {
        return bits >> 21 == 0x7FF && version() != 1 && layer() != 4 && rate_index() != 0 &&
               rate_index() != 15 && sampling_index() != 3;
    }
    bool is_of_one_stream_with(MpegHeader other) const {
        constexpr std::uint32_t sync_version_layer_sampling = 0xFFFE0C00;
        return ((bits ^ other.bits) & sync_version_layer_sampling) == 0;
    }
};

MpegHeader mpeg_header(Bytes bytes) {
    return {static_cast<std::uint32_t>(read_big_endian(bytes.data(), 4))};
}

/// Bit rates in kbit/s.
using Rates = std::array<std::uint16_t, 15>;
constexpr std::array<Rates, 3> mpeg1_rates{{
    {0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448},
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384},
    {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},
}};
constexpr std::array<Rates, 3> mpeg2_rates{{
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256},
    {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160},
    {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160},
}};

/// The length in bytes of the frame of a valid header.
std::size_t frame_length(MpegHeader header) {
    constexpr std::array<std::uint32_t, 3> mpeg1_sampling{44100, 48000, 32000};
    const std::uint32_t halvings = header.is_mpeg1() ? 0 : header.version() == 2 ? 1 : 2;
    const std::size_t sampling = mpeg1_sampling[header.sampling_index()] >> halvings;
    const Rates& rates = (header.is_mpeg1() ? mpeg1_rates : mpeg2_rates)[header.layer() - 1];
    const std::size_t rate = std::size_t{rates[header.rate_index()]} * 1000;
    if (header.layer() == 1) {
        return (12 * rate / sampling + header.padding()) * 4;
    }
    const std::size_t slots = header.layer() == 3 && !header.is_mpeg1() ? 72 : 144;
    return slots * rate / sampling + header.padding();
}

/// Whether the first frame ends inside `head` and is followed by a header for which `is_next`
/// holds, or by fewer bytes than a header has.
template <class IsNext>
bool is_followed(Bytes head, std::size_t length, std::size_t header_size, IsNext is_next) {
    return length >= header_size && head.size() >= length &&
           (head.size() < length + header_size || is_next(head.subspan(length, header_size)));
}

bool is_mpeg_audio(Bytes head) {
    if (head.size() < 4) {
        return false;
    }
    const MpegHeader first = mpeg_header(head);
    if (!first.is_valid()) {
        return false;
    }
    return is_followed(head, frame_length(first), 4,
                       [&](Bytes next) { return first.is_of_one_stream_with(mpeg_header(next)); });
}

bool is_adts_header(Bytes bytes) {
    return bytes[0] == 0xFF && (bytes[1] & 0xF6) == 0xF0 && (bytes[2] >> 2 & 15) < 13;
}

bool is_adts(Bytes head) {
    constexpr std::size_t header_size = 7;
    if (head.size() < header_size || !is_adts_header(head)) {
        return false;
    }
    const std::size_t length =
        (head[3] & 3U) << 11 | static_cast<std::size_t>(head[4]) << 3 | head[5] >> 5;
    return is_followed(head, length, header_size, is_adts_header);
}

bool is_ac3(Bytes head) {
    constexpr int last_version = 10;
    return head.size() >= 7 && head[0] == 0x0B && head[1] == 0x77 && head[4] >> 6 != 3 &&
           (head[4] & 63) < 38 && head[5] >> 3 <= last_version;
}

bool is_core_audio(Bytes head) {
    return has_text_at(head, 0, std::string_view("caff\0\1\0\0desc", 12));
}

bool is_mpeg4(Bytes head) {
    return has_text_at(head, 4, "ftyp");
}

bool is_container(Bytes head) {
    if (has_text_at(head, 0, "RIFF") || has_text_at(head, 0, "RIFX") ||
        has_text_at(head, 0, "RF64")) {
        return has_text_at(head, 8, "WAVE");
    }
    if (has_text_at(head, 0, "FORM")) {
        return has_text_at(head, 8, "AIFF") || has_text_at(head, 8, "AIFC");
    }
    return has_text_at(head, 0, "riff") ||                                 // Wave64
           has_text_at(head, 0, ".snd") || has_text_at(head, 0, "dns.") || // AU, both byte orders
           has_text_at(head, 0, "fLaC") || has_text_at(head, 0, "OggS");
}

/// Sound banks are RIFF files like WAVE; the form type is the kind of bank.
bool is_bank(Bytes head) {
    return has_text_at(head, 0, "RIFF") &&
           (has_text_at(head, 8, "sfbk") || has_text_at(head, 8, "DLS "));
}

} // namespace

std::uint64_t id3_tag_size(Bytes head) {
    constexpr std::size_t header_size = 10;
    constexpr std::uint8_t has_footer = 0x10;
    if (head.size() < header_size || !has_text_at(head, 0, "ID3")) {
        return 0;
    }
    std::uint64_t size = 0; // seven bits per byte, so that no byte matches a frame sync
    for (const std::uint8_t byte : head.subspan(6, 4)) {
        size = size << 7 | (byte & 0x7F);
    }
    return header_size + size + ((head[5] & has_footer) != 0 ? header_size : 0);
}

AudioHead audio_head(Bytes head) {
    if (is_mpeg4(head) || is_core_audio(head) || is_ac3(head) || is_adts(head) ||
        is_mpeg_audio(head)) {
        return AudioHead::audio;
    }
    if (is_bank(head)) {
        return AudioHead::bank;
    }
    return is_container(head) ? AudioHead::container : AudioHead::unknown;
}

} // namespace lumo::platform
