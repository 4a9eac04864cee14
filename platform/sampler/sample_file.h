// Opens the audio files and sound banks that an instrument refers to.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <span>
#include <string>

namespace lumo::platform {

/// Statuses of files, from MacErrors.h and AudioFile.h.
constexpr OSStatus file_not_found = -43;
constexpr OSStatus file_not_permitted = -54;
constexpr OSStatus too_many_open_files = -42;
constexpr OSStatus file_io_failed = -36;
constexpr OSStatus not_an_audio_file = 0x7479703F; ///< 'typ?'

/// kAudioUnitErr_FailedInitialization of AUComponent.h: libsndfile is not installed.
constexpr OSStatus failed_initialization = -10875;

/// The status for a file that could not be opened or read with errno `error`.
OSStatus status_of_file_error(int error);

/// The expected kind of a sample's file.
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

/// Opens the file at `path` with the C library's `open`, checks its header and closes it. Returns 0
/// when it is a regular file of this kind, else a status. Never blocks on a pipe or a device; time
/// and memory are bounded for any contents.
OSStatus open_sample(const std::string& path, SampleKind kind = SampleKind::audio);

/// Opens all of these samples in this order, even after a failure. A sample listed twice with the
/// same kind is opened once. Returns 0 or the first status other than 0.
OSStatus open_samples(std::span<const SampleReference> samples);

} // namespace lumo::platform
