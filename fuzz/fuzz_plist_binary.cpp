// Reads any bytes as a binary property list, and the strings and numbers in it.
#include "plist_input.h"

#include <vector>

namespace {

void look_at(CFTypeRef object) {
    CFHash(object);
    if (CFGetTypeID(object) == CFStringGetTypeID()) {
        char text[64];
        CFStringGetCString(static_cast<CFStringRef>(object), text, sizeof text,
                           kCFStringEncodingUTF8);
    } else if (CFGetTypeID(object) == CFNumberGetTypeID()) {
        SInt32 value = 0;
        CFNumberGetValue(static_cast<CFNumberRef>(object), kCFNumberIntType, &value);
    }
}

/// Reads the root and, if it is a dictionary, its values, and looks each up by its key.
void look_at_top(CFTypeRef root) {
    look_at(root);
    if (CFGetTypeID(root) != CFDictionaryGetTypeID()) {
        return;
    }
    const auto* dictionary = static_cast<CFDictionaryRef>(root);
    const auto count = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
    std::vector<const void*> keys(count);
    std::vector<const void*> values(count);
    CFDictionaryGetKeysAndValues(dictionary, keys.data(), values.data());
    for (std::size_t i = 0; i < count; ++i) {
        look_at(values[i]);
        require(CFDictionaryGetValue(dictionary, keys[i]) == values[i]);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (const auto list = list_of(text_of(data, size))) {
        look_at_top(list.get());
    }
    return 0;
}
