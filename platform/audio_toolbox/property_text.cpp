// Presets refer to their samples by paths; some hosts write file URLs instead.
#include "audio_toolbox/property_text.h"

#include "base/cf_values.h"

#include <strings.h>

#include <string>

namespace lumo::platform {
namespace {

bool is_file_url(const std::string& text) {
    constexpr const char scheme[] = "file://";
    return strncasecmp(text.c_str(), scheme, sizeof scheme - 1) == 0;
}

} // namespace

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

} // namespace lumo::platform
