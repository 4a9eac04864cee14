// Recognises audio and sound banks by the first bytes of a file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace lumo::platform {

/// How many bytes of the beginning are enough for everything below: the longest frame that there
/// is, of ADTS, and the header behind it.
constexpr std::size_t audio_head_size = 8192 + 16;

/// The size of the ID3v2 tag that `head` begins with, in bytes; 0 when it begins with none.
std::uint64_t id3_tag_size(std::span<const std::uint8_t> head);

enum class AudioHead {
    audio,     ///< recognised for good
    container, ///< a container whose inside decides: WAVE, AIFF, AU, FLAC, Ogg
    bank,      ///< no audio but a sound bank: SoundFont 2 or Downloadable Sounds
    unknown
};

/// What `head`, the first audio_head_size bytes of a file or all of a shorter one, tells. Audio is
/// an MPEG-4 file, a Core Audio file of any codec, an AC-3 stream, and a stream of ADTS or MPEG
/// audio frames; of the latter two a second frame must follow the first where the head reaches that
/// far.
AudioHead audio_head(std::span<const std::uint8_t> head);

} // namespace lumo::platform
