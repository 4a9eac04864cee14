// Checks whether a file is a playable sample or a sound bank.
//
// The file is opened once, with the C library's `open` and the recorded path, so that a library
// that redirects this call sees every sample. If the first bytes do not identify the format,
// libsndfile decides, but only for the containers that samplers use: some of its other parsers, and
// its decoders for MPEG audio and ALAC, print messages to the standard streams. libsndfile reads
// through SampleReader, which skips tags before the audio and limits the number of bytes, because
// some parsers follow any length stored in the file.
//
// A Sound Designer II file has its header in a resource fork, which copies to Linux and into a show
// do not contain; without it the file is not audio.
#include "sampler/sample_file.h"

#include "base/descriptor.h"
#include "sampler/audio_signature.h"
#include "sampler/sound_file_library.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <string_view>
#include <unordered_set>

namespace lumo::platform {
namespace {

constexpr int max_tags = 16; ///< files have one, rarely two
constexpr sf_count_t max_bytes = 32 << 20;
constexpr sf_count_t cost_of_a_read = 256; ///< in bytes; limits the number of small reads

/// The file from `start` on, as libsndfile reads it: a few bytes at a time, mostly from the head.
struct SampleReader {
    int fd;
    sf_count_t start;
    sf_count_t size;
    sf_count_t at = 0;
    sf_count_t allowance = max_bytes;
    int error = 0;                           ///< errno of a failed read
    std::span<const std::uint8_t> head = {}; ///< the first bytes, if they are in memory

    std::span<std::uint8_t> read(std::span<std::uint8_t> buffer) {
        const auto from = static_cast<std::size_t>(at);
        if (from < head.size() && buffer.size() <= head.size() - from) {
            std::copy_n(head.begin() + at, buffer.size(), buffer.begin());
            at += static_cast<sf_count_t>(buffer.size());
            return buffer;
        }
        return read_file(buffer);
    }

    std::span<std::uint8_t> read_file(std::span<std::uint8_t> buffer) {
        const ssize_t count =
            uninterrupted([&] { return ::pread(fd, buffer.data(), buffer.size(), start + at); });
        if (count < 0) {
            error = errno;
            return {};
        }
        at += count;
        return buffer.first(static_cast<std::size_t>(count));
    }
};

SampleReader& reader_of(void* user_data) {
    return *static_cast<SampleReader*>(user_data);
}

sf_count_t reader_size(void* user_data) {
    return reader_of(user_data).size;
}

sf_count_t reader_seek(sf_count_t offset, int whence, void* user_data) {
    SampleReader& reader = reader_of(user_data);
    const sf_count_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? reader.at : reader.size;
    sf_count_t position = 0;
    if (!__builtin_add_overflow(base, offset, &position) && position >= 0) {
        reader.at = std::min(position, reader.size);
    }
    return reader.at;
}

sf_count_t reader_read(void* bytes, sf_count_t count, void* user_data) {
    SampleReader& reader = reader_of(user_data);
    const sf_count_t allowed = std::min(count, reader.allowance - cost_of_a_read);
    if (allowed <= 0) {
        return 0;
    }
    const auto read =
        reader.read({static_cast<std::uint8_t*>(bytes), static_cast<std::size_t>(allowed)});
    reader.allowance -= static_cast<sf_count_t>(read.size()) + cost_of_a_read;
    return static_cast<sf_count_t>(read.size());
}

sf_count_t reader_tell(void* user_data) {
    return reader_of(user_data).at;
}

bool is_audio_to(const SoundFileLibrary& library, SampleReader& reader) {
    SF_VIRTUAL_IO io{reader_size, reader_seek, reader_read, nullptr, reader_tell};
    SF_INFO info{};
    SNDFILE* file = library.open_virtual(&io, SFM_READ, &info, &reader);
    if (file) {
        library.close(file);
    }
    return file != nullptr;
}

/// Reads the head of the file into `buffer`; it is empty when it cannot be read. For most files the
/// first page suffices; a longer read would make the system read further ahead.
std::span<const std::uint8_t> read_head(SampleReader& reader, std::span<std::uint8_t> buffer) {
    constexpr std::size_t page_size = 4096;
    auto head = reader.read_file(buffer.first(page_size));
    const AudioHead kind = audio_head(head);
    if (head.size() == page_size && kind != AudioHead::container && kind != AudioHead::bank) {
        reader.at = 0;
        head = reader.read_file(buffer);
    }
    reader.at = 0;
    return head;
}

/// Moves the reader's start after the tags that precede the audio, and reads its head into
/// `buffer`; the head is empty when it cannot be read.
void skip_tags(SampleReader& reader, std::span<std::uint8_t> buffer) {
    for (int tags = 0; tags <= max_tags; ++tags) {
        const auto head = read_head(reader, buffer);
        const auto tag = static_cast<sf_count_t>(id3_tag_size(head));
        if (tag == 0) {
            reader.head = head;
            return;
        }
        if (tag >= reader.size) {
            return;
        }
        reader.start += tag;
        reader.size -= tag;
    }
}

/// 0 when the file is of this kind, else the reason why it cannot be played.
OSStatus status_as(SampleKind kind, SampleReader& reader) {
    const AudioHead head = audio_head(reader.head);
    if (kind == SampleKind::audio && head == AudioHead::container) {
        const SoundFileLibrary* library = sound_file_library();
        if (!library) {
            return failed_initialization;
        }
        return is_audio_to(*library, reader) ? 0 : not_an_audio_file;
    }
    const AudioHead wanted = kind == SampleKind::bank ? AudioHead::bank : AudioHead::audio;
    return head == wanted ? 0 : not_an_audio_file;
}

OSStatus check_file(int fd, off_t size, SampleKind kind) {
    std::array<std::uint8_t, audio_head_size> buffer; // not zeroed: partly used
    SampleReader reader{fd, 0, size};
    skip_tags(reader, buffer);
    const OSStatus status = status_as(kind, reader);
    return status != 0 && reader.error != 0 ? status_of_file_error(reader.error) : status;
}

} // namespace

OSStatus status_of_file_error(int error) {
    switch (error) {
    case ENOENT:
    case ENOTDIR:
    case ELOOP:
    case ENAMETOOLONG:
        return file_not_found;
    case EACCES:
    case EPERM:
        return file_not_permitted;
    case EMFILE:
    case ENFILE:
        return too_many_open_files;
    default:
        return file_io_failed;
    }
}

OSStatus open_sample(const std::string& path, SampleKind kind) {
    if (path.find('\0') != std::string::npos) {
        return file_not_found; // the C library would open another file
    }
    const Descriptor fd(uninterrupted(
        [&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY); }));
    if (!fd) {
        // Sockets and devices without hardware cannot be opened.
        return errno == ENXIO || errno == ENODEV ? not_an_audio_file : status_of_file_error(errno);
    }
    struct stat status {};
    if (::fstat(fd.get(), &status) != 0) {
        return status_of_file_error(errno);
    }
    return S_ISREG(status.st_mode) ? check_file(fd.get(), status.st_size, kind) : not_an_audio_file;
}

OSStatus open_samples(std::span<const SampleReference> samples) {
    OSStatus first = 0;
    std::array<std::unordered_set<std::string_view>, 2> seen; // by kind
    for (const SampleReference& sample : samples) {
        if (seen.at(static_cast<std::size_t>(sample.kind)).insert(sample.path).second) {
            const OSStatus status = open_sample(sample.path, sample.kind);
            first = first != 0 ? first : status;
        }
    }
    return first;
}

} // namespace lumo::platform
