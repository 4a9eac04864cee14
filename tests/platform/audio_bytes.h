// Audio files for tests: whole files written by libsndfile, and the first bytes of formats that it
// cannot write.
#pragma once

#include <sndfile.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace lumo::test {

/// The libsndfile format of most samples.
constexpr int wav = SF_FORMAT_WAV | SF_FORMAT_PCM_16;

/// Writes 0.1 s of a tone, 44.1 kHz mono, in a libsndfile format (SF_FORMAT_...). Fails the test
/// when it cannot.
void write_audio(const std::filesystem::path& path, int format);

/// `number` as `bytes` big-endian bytes.
std::string big_endian(std::uint64_t number, int bytes);
/// `number` as `bytes` little-endian bytes.
std::string little_endian(std::uint64_t number, int bytes);

/// `count` MPEG-1 layer III frames of silence, 128 kbit/s at 44.1 kHz.
std::string mp3_frames(int count);
/// `count` ADTS frames of `length` bytes.
std::string adts_frames(int count, std::size_t length);
/// The first bytes of an AC-3 stream.
std::string ac3_head();
/// The first box of an MPEG-4 file, with the given brand.
std::string mpeg4_head(std::string_view brand);
/// A Core Audio file up to and including its description chunk, which names the codec.
std::string core_audio_head(std::string_view codec);
/// An ID3v2.4 tag with `size` zero bytes as its content.
std::string id3_tag(std::size_t size);
/// A RIFF file with the four-letter type `form` and one empty list: "sfbk" and "DLS " are sound
/// banks.
std::string bank_bytes(std::string_view form);

} // namespace lumo::test
