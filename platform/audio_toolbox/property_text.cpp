// Presets refer to their samples by paths; some hosts write file URLs instead.
#include "audio_toolbox/property_text.h"

#include <strings.h>

#include <cstddef>

namespace lumo::platform {
namespace {

bool is_file_url(const std::string& text) {
    constexpr const char scheme[] = "file://";
    return strncasecmp(text.c_str(), scheme, sizeof scheme - 1) == 0;
}

} // namespace

std::string to_utf8(CFStringRef string) {
    const CFRange all = CFRangeMake(0, CFStringGetLength(string));
    CFIndex size = 0;
    const CFIndex units =
        CFStringGetBytes(string, all, kCFStringEncodingUTF8, 0, false, nullptr, 0, &size);
    if (units != all.length) {
        return {};
    }
    std::string text(static_cast<std::size_t>(size), '\0');
    CFStringGetBytes(string, all, kCFStringEncodingUTF8, 0, false,
                     reinterpret_cast<UInt8*>(text.data()), size, nullptr);
    return text;
}

Ref<CFStringRef> posix_path(CFStringRef reference) {
    if (is_file_url(to_utf8(reference))) {
        if (const auto url =
                adopt(CFURLCreateWithString(kCFAllocatorDefault, reference, nullptr))) {
            if (auto path = adopt(CFURLCopyFileSystemPath(url.get(), kCFURLPOSIXPathStyle))) {
                return path;
            }
        }
    }
    return retain(reference);
}

} // namespace lumo::platform
