// The key of a name with CoreFoundation: composed, folded, and composed again, since folding can
// produce a letter and a mark that have a composed form.
#include "base/ref.h"
#include "base/utf8.h"
#include "sample_names.h"

#include <cstddef>

namespace lumo::exs::relink {
namespace {

/// Copies the UTF-8 bytes of `string`; false when it cannot be converted (a lone surrogate).
bool copy_bytes(CFStringRef string, std::string& bytes) {
    const CFRange all{0, CFStringGetLength(string)};
    CFIndex size = 0;
    if (CFStringGetBytes(string, all, kCFStringEncodingUTF8, 0, false, nullptr, 0, &size) !=
        all.length) {
        return false;
    }
    bytes.resize(static_cast<std::size_t>(size));
    CFStringGetBytes(string, all, kCFStringEncodingUTF8, 0, false,
                     reinterpret_cast<UInt8*>(bytes.data()), size, nullptr);
    return true;
}

} // namespace

bool make_unicode_key(std::string_view name, std::string& key) {
    if (!is_utf8(name)) {
        return false;
    }
    const auto text = adopt(
        CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(name.data()),
                                static_cast<CFIndex>(name.size()), kCFStringEncodingUTF8, false));
    const auto folded = adopt(CFStringCreateMutableCopy(kCFAllocatorDefault, 0, text.get()));
    CFStringNormalize(folded.get(), kCFStringNormalizationFormC);
    CFStringFold(folded.get(), kCFCompareCaseInsensitive, nullptr);
    CFStringNormalize(folded.get(), kCFStringNormalizationFormC);
    return copy_bytes(folded.get(), key);
}

} // namespace lumo::exs::relink
