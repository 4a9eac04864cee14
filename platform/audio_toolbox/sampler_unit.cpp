// A load builds a separate state, which replaces the unit's state once every sample has been
// opened.
#include "audio_toolbox/sampler_unit.h"

#include "sampler/exs_load.h"
#include "sampler/sample_file.h"

#include <limits.h>

#include <array>
#include <string>
#include <utility>

namespace lumo::platform {
namespace {

/// The path of a file URL; empty when it has none.
std::string path_of(CFURLRef url) {
    std::array<UInt8, PATH_MAX> path{};
    const bool has_path =
        CFURLGetFileSystemRepresentation(url, true, path.data(), static_cast<CFIndex>(path.size()));
    return has_path ? reinterpret_cast<const char*>(path.data()) : std::string();
}

} // namespace

OSStatus load_class_info(SamplerState& state, CFPropertyListRef list) {
    SamplerState next = state;
    OSStatus status = read_class_info(list, next);
    if (status == 0) {
        status = open_samples(next.loaded.samples);
    }
    if (status == 0) {
        state = std::move(next);
    }
    return status;
}

OSStatus load_instrument(SamplerState& state, const AUSamplerInstrumentData& data) {
    if (!data.fileURL || CFGetTypeID(data.fileURL) != CFURLGetTypeID()) {
        return kAudioUnitErr_InvalidPropertyValue;
    }
    if (data.instrumentType != kInstrumentType_EXS24) {
        return kAudioUnitErr_FormatNotSupported;
    }
    LoadedInstrument next;
    OSStatus status = load_exs(path_of(data.fileURL), next);
    if (status == 0) {
        status = open_samples(next.samples);
    }
    if (status == 0) {
        state.loaded = std::move(next);
    }
    return status;
}

} // namespace lumo::platform
