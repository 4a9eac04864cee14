// Opens the audio files and sound banks that an instrument refers to.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <span>
#include <string>

namespace lumo::platform {

/// The statuses of files, MacErrors.h's and AudioFile.h's.
constexpr OSStatus file_not_found = -43;
constexpr OSStatus file_not_permitted = -54;
constexpr OSStatus too_many_open_files = -42;
constexpr OSStatus file_io_failed = -36;
constexpr OSStatus not_an_audio_file = 0x7479703F; ///< 'typ?'

/// The status of a file that could not be opened or read, from the errno that told so.
OSStatus status_of_file_error(int error);

/// What the file of a sample has to be.
enum class SampleKind {
    audio,
    bank, ///< a sound bank: SoundFont 2 or Downloadable Sounds
};

/// A file that an instrument refers to.
struct SampleReference {
    std::string path;
    SampleKind kind = SampleKind::audio;

    bool operator==(const SampleReference&) const = default;
};

/// Opens the file at `path` through the C library's `open`, looks at its header and closes it.
/// Returns 0 when it is a regular file of this kind, else what is wrong with it. Never waits for a
/// pipe or a device; bounded in time and memory whatever the file holds.
OSStatus open_sample(const std::string& path, SampleKind kind = SampleKind::audio);

/// Opens every one of these samples in this order, also after one has failed. What is listed twice
/// with the same kind is opened once. Returns 0 or the first status that was not 0.
OSStatus open_samples(std::span<const SampleReference> samples);

} // namespace lumo::platform
