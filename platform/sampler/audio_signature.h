// Identifies audio files and sound banks by their first bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace lumo::platform {

/// The number of bytes at the start of a file that suffice for the functions below: the longest
/// frame (ADTS) and the header after it.
constexpr std::size_t audio_head_size = 8192 + 16;

/// The size in bytes of the ID3v2 tag at the start of `head`; 0 when there is none.
std::uint64_t id3_tag_size(std::span<const std::uint8_t> head);

enum class AudioHead {
    audio,     ///< identified as audio
    container, ///< a container whose contents decide: WAVE, AIFF, AU, FLAC, Ogg
    bank,      ///< a sound bank: SoundFont 2 or Downloadable Sounds
    unknown
};

/// Classifies `head`, the first audio_head_size bytes of a file or all of a shorter one. Audio is
/// an MPEG-4 file, a Core Audio file of any codec, an AC-3 stream, and a stream of ADTS or MPEG
/// audio frames; in the latter two a second frame must follow the first if the head is long enough.
AudioHead audio_head(std::span<const std::uint8_t> head);

} // namespace lumo::platform
