// The key of a reference determines its kind: "Bank:" and a number is a sound bank, every other key
// a sample ("Sample:" and a number as written by the sampler, any text in presets made by hand).
#include "audio_toolbox/file_references.h"

#include "base/cf_values.h"

#include <strings.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace lumo::platform {
namespace {

bool is_file_url(const std::string& text) {
    constexpr const char scheme[] = "file://";
    return strncasecmp(text.c_str(), scheme, sizeof scheme - 1) == 0;
}

/// The path of a file reference. For a file URL, which some hosts write, its path, percent-decoded
/// and without the host; else, or when the URL has no valid path, the reference itself.
Ref<CFStringRef> posix_path(CFStringRef reference) {
    if (is_file_url(to_string(reference))) {
        if (const auto url =
                adopt(CFURLCreateWithString(kCFAllocatorDefault, reference, nullptr))) {
            if (auto path = adopt(CFURLCopyFileSystemPath(url.get(), kCFURLPOSIXPathStyle))) {
                return path;
            }
        }
    }
    return retain(reference);
}

/// The key of a reference and its path.
using Reference = std::pair<std::string, std::string>;

SampleKind kind_of(const std::string& key) {
    return key.starts_with("Bank:") ? SampleKind::bank : SampleKind::audio;
}

std::vector<SampleReference> in_order(std::vector<Reference> references) {
    std::sort(references.begin(), references.end());
    std::vector<SampleReference> files;
    files.reserve(references.size());
    for (auto& [key, path] : references) {
        files.push_back({std::move(path), kind_of(key)});
    }
    return files;
}

} // namespace

void read_references(CFDictionaryRef list, LoadedInstrument& loaded) {
    auto paths = make_mutable_dictionary();
    std::vector<Reference> references;
    for_each_entry(value_of<CFDictionaryRef>(list, "file-references"),
                   [&](CFTypeRef key, CFTypeRef value) {
                       const auto name = value_as<CFStringRef>(key);
                       const auto reference = value_as<CFStringRef>(value);
                       if (name && reference) {
                           const Ref<CFStringRef> path = posix_path(reference);
                           CFDictionarySetValue(paths.get(), name, path.get());
                           references.emplace_back(to_string(name), to_string(path.get()));
                       }
                   });
    loaded.references = std::move(paths);
    loaded.samples = in_order(std::move(references));
}

} // namespace lumo::platform
