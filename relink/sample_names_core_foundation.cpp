// The key of a name with CoreFoundation: composed, folded, and composed again, since folding can
// produce a letter and a mark that have a composed form.
#include "base/cf_values.h"
#include "base/utf8.h"
#include "sample_names.h"

namespace lumo::exs::relink {
bool make_unicode_key(std::string_view name, std::string& key) {
    if (!is_utf8(name)) {
        return false;
    }
    const Ref<CFStringRef> text = make_string(name);
    const auto folded = adopt(CFStringCreateMutableCopy(kCFAllocatorDefault, 0, text.get()));
    CFStringNormalize(folded.get(), kCFStringNormalizationFormC);
    CFStringFold(folded.get(), kCFCompareCaseInsensitive, nullptr);
    CFStringNormalize(folded.get(), kCFStringNormalizationFormC);
    key = to_string(folded.get());
    return true;
}

} // namespace lumo::exs::relink
