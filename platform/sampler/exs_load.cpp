// Loads a file in four steps: bytes, records, layers, state. The whole file is read into memory: a
// few hundred bytes per zone.
#include "sampler/exs_load.h"

#include "base/cf_values.h"
#include "base/descriptor.h"
#include "sampler/exs_layers.h"
#include "sampler/exs_reader.h"
#include "sampler/exs_state.h"
#include "sampler/exs_text.h"
#include "sampler/exs_zone_state.h"
#include "sampler/state_dictionary.h"

#include <AudioToolbox/AudioToolbox.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

namespace lumo::platform {
namespace {

constexpr off_t max_file_size = off_t{1} << 30;

/// Reads until `bytes` is full or the file ends, and shrinks `bytes` to the number read. False,
/// with errno set, on a failure.
bool read_all(int fd, std::vector<std::uint8_t>& bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count =
            uninterrupted([&] { return ::read(fd, bytes.data() + done, bytes.size() - done); });
        if (count < 0) {
            return false;
        }
        if (count == 0) {
            break;
        }
        done += static_cast<std::size_t>(count);
    }
    bytes.resize(done);
    return true;
}

OSStatus read_file(const std::string& path, std::vector<std::uint8_t>& bytes) {
    const Descriptor fd(uninterrupted(
        [&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY); }));
    struct stat info {};
    if (!fd || ::fstat(fd.get(), &info) != 0) {
        return status_of_file_error(errno);
    }
    if (!S_ISREG(info.st_mode) || info.st_size > max_file_size) {
        return kAudioUnitErr_InvalidFile;
    }
    bytes.resize(static_cast<std::size_t>(info.st_size));
    return read_all(fd.get(), bytes) ? 0 : status_of_file_error(errno);
}

std::string file_name(std::string_view path) {
    const std::string_view name = path.substr(path.rfind('/') + 1);
    return exs_text({reinterpret_cast<const std::uint8_t*>(name.data()), name.size()});
}

Ref<CFDictionaryRef> references(const ExsInstrument& instrument,
                                const std::vector<std::size_t>& samples) {
    auto paths = make_mutable_dictionary();
    for (const std::size_t number : samples) {
        CFDictionarySetValue(paths.get(),
                             state_text("Sample:" + std::to_string(exs_waveform(number))).get(),
                             state_text(instrument.samples[number].path).get());
    }
    return paths;
}

} // namespace

OSStatus load_exs(const std::string& path, LoadedInstrument& loaded) {
    std::vector<std::uint8_t> bytes;
    const OSStatus status = read_file(path, bytes);
    return status == 0 ? load_exs_bytes(bytes, file_name(path), loaded) : status;
}

OSStatus load_exs_bytes(std::span<const std::uint8_t> bytes, const std::string& file_name,
                        LoadedInstrument& loaded) {
    const auto instrument = read_exs(bytes);
    if (!instrument) {
        return kAudioUnitErr_InvalidFile;
    }
    const std::vector<ExsLayer> layers = exs_layers(*instrument);
    const std::vector<std::size_t> used = exs_used_samples(*instrument, layers);
    LoadedInstrument result;
    result.instrument = exs_instrument_state(*instrument, layers, file_name);
    if (!result.instrument) {
        return kAudioUnitErr_FormatNotSupported;
    }
    result.references = references(*instrument, used);
    for (const std::size_t number : used) {
        result.samples.push_back({.path = instrument->samples[number].path});
    }
    loaded = std::move(result);
    return 0;
}

} // namespace lumo::platform
