// The key of a reference determines its kind: "Bank:" and a number is a sound bank, every other key
// a sample ("Sample:" and a number as written by the sampler, any text in presets made by hand).
#include "audio_toolbox/file_references.h"

#include "base/cf_values.h"

#include <strings.h>

#include <algorithm>
#include <cstddef>
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

/// The key of a reference, used for sorting, and its path.
using Reference = std::pair<std::string, std::string>;

struct References {
    std::vector<CFTypeRef> keys; ///< borrowed
    std::vector<Ref<CFStringRef>> paths;
    std::vector<Reference> texts;

    void add(CFTypeRef key, CFTypeRef value) {
        const auto name = value_as<CFStringRef>(key);
        const auto reference = value_as<CFStringRef>(value);
        if (!name || !reference) {
            return;
        }
        Ref<CFStringRef> path = posix_path(reference);
        texts.emplace_back(to_string(name), to_string(path.get()));
        keys.push_back(key);
        paths.push_back(std::move(path));
    }
};

References references_in(CFDictionaryRef list) {
    References references;
    const auto recorded = value_of<CFDictionaryRef>(list, "file-references");
    if (!recorded) {
        return references;
    }
    const auto count = static_cast<std::size_t>(CFDictionaryGetCount(recorded));
    std::vector<CFTypeRef> keys(count);
    std::vector<CFTypeRef> values(count);
    CFDictionaryGetKeysAndValues(recorded, keys.data(), values.data());
    for (std::size_t i = 0; i < count; ++i) {
        references.add(keys[i], values[i]);
    }
    return references;
}

Ref<CFDictionaryRef> dictionary_of(References& references) {
    std::vector<CFTypeRef> paths;
    paths.reserve(references.paths.size());
    for (const Ref<CFStringRef>& path : references.paths) {
        paths.push_back(path.get());
    }
    return adopt(CFDictionaryCreate(kCFAllocatorDefault, references.keys.data(), paths.data(),
                                    static_cast<CFIndex>(paths.size()),
                                    &kCFTypeDictionaryKeyCallBacks,
                                    &kCFTypeDictionaryValueCallBacks));
}

SampleKind kind_of(const std::string& key) {
    return key.starts_with("Bank:") ? SampleKind::bank : SampleKind::audio;
}

std::vector<SampleReference> in_order(std::vector<Reference> texts) {
    std::sort(texts.begin(), texts.end());
    std::vector<SampleReference> files;
    files.reserve(texts.size());
    for (Reference& reference : texts) {
        files.push_back({std::move(reference.second), kind_of(reference.first)});
    }
    return files;
}

} // namespace

void read_references(CFDictionaryRef list, LoadedInstrument& loaded) {
    References references = references_in(list);
    loaded.references = dictionary_of(references);
    loaded.samples = in_order(std::move(references.texts));
}

} // namespace lumo::platform
