// Reads and replaces the entry "file-references" of a sampler state, a dictionary from the
// sampler's own keys to the paths of its sample files.
#include "references.h"

#include "base/utf8.h"
#include "property_list.h"

namespace lumo::exs {
namespace {

constexpr const char* references_key = "file-references";

Ref<CFMutableDictionaryRef> make_dictionary(const References& paths) {
    auto dictionary = make_mutable_dictionary();
    for (const auto& [key, path] : paths) {
        if (is_utf8(key) && is_utf8(path)) {
            CFDictionarySetValue(dictionary.get(), make_string(key).get(), make_string(path).get());
        }
    }
    return dictionary;
}

} // namespace

References references(const void* state) {
    References paths;
    for_each_entry(value_of<CFDictionaryRef>(static_cast<CFDictionaryRef>(state), references_key),
                   [&](CFTypeRef key, CFTypeRef value) {
                       if (const auto path = value_as<CFStringRef>(value)) {
                           paths[to_string(static_cast<CFStringRef>(key))] = to_string(path);
                       }
                   });
    return paths;
}

Ref<CFTypeRef> with_references(const void* state, const References& paths) {
    auto copy = adopt(
        CFDictionaryCreateMutableCopy(kCFAllocatorDefault, 0, static_cast<CFDictionaryRef>(state)));
    const Ref<CFMutableDictionaryRef> dictionary = make_dictionary(paths);
    CFDictionarySetValue(copy.get(), make_string(references_key).get(), dictionary.get());
    return copy;
}

} // namespace lumo::exs
