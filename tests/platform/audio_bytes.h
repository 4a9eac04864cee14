// Audio files for tests: real ones made by libsndfile, and beginnings of those it does not write.
#pragma once

#include <sndfile.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace lumo::test {

/// The format of libsndfile that most samples have.
constexpr int wav = SF_FORMAT_WAV | SF_FORMAT_PCM_16;

/// Writes a tenth of a second of a tone in a format of libsndfile (SF_FORMAT_...), 44.1 kHz mono.
/// Fails the test when it cannot.
void write_audio(const std::filesystem::path& path, int format);

/// The number in `bytes` big-endian bytes.
std::string big_endian(std::uint64_t number, int bytes);
/// The number in `bytes` little-endian bytes.
std::string little_endian(std::uint64_t number, int bytes);

/// `count` MPEG-1 layer III frames of silence, 128 kbit/s at 44.1 kHz.
std::string mp3_frames(int count);
/// `count` ADTS frames of `length` bytes.
std::string adts_frames(int count, std::size_t length);
/// The first bytes of an AC-3 stream.
std::string ac3_head();
/// An MPEG-4 file's first box, of a brand.
std::string mpeg4_head(std::string_view brand);
/// A Core Audio file up to its description, which names a codec.
std::string core_audio_head(std::string_view codec);
/// An ID3v2.4 tag with `size` bytes of nothing in it.
std::string id3_tag(std::size_t size);
/// A RIFF file of `form`, four letters, with one empty list: "sfbk" and "DLS " are sound banks.
std::string bank_bytes(std::string_view form);

} // namespace lumo::test
