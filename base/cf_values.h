// CoreFoundation's values as C++ values: UTF-8 text, values of an expected type, and entries of
// dictionaries.
#pragma once

#include "base/ref.h"

#include <CoreFoundation/CoreFoundation.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace lumo {

/// A new string from UTF-8. For text that is not UTF-8: nothing, or on a Mac possibly a string with
/// U+FFFD.
inline Ref<CFStringRef> make_string(std::string_view utf8) {
    return adopt(
        CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(utf8.data()),
                                static_cast<CFIndex>(utf8.size()), kCFStringEncodingUTF8, false));
}

/// The UTF-8 text of a string up to its first NUL; empty when it is null or cannot be converted.
inline std::string to_string(CFStringRef string) {
    if (!string) {
        return {};
    }
    const CFIndex size =
        CFStringGetMaximumSizeForEncoding(CFStringGetLength(string), kCFStringEncodingUTF8) + 1;
    std::string text(static_cast<std::size_t>(size), '\0');
    if (!CFStringGetCString(string, text.data(), size, kCFStringEncodingUTF8)) {
        return {};
    }
    text.resize(text.find('\0'));
    return text;
}

/// The ID of the type of a reference, which may be null.
inline CFTypeID type_id(CFArrayRef) {
    return CFArrayGetTypeID();
}
inline CFTypeID type_id(CFBooleanRef) {
    return CFBooleanGetTypeID();
}
inline CFTypeID type_id(CFDataRef) {
    return CFDataGetTypeID();
}
inline CFTypeID type_id(CFDictionaryRef) {
    return CFDictionaryGetTypeID();
}
inline CFTypeID type_id(CFNumberRef) {
    return CFNumberGetTypeID();
}
inline CFTypeID type_id(CFStringRef) {
    return CFStringGetTypeID();
}

/// `value` as a `T`, borrowed; null when it is null or has another type.
template <class T>
T value_as(CFTypeRef value) {
    return value && CFGetTypeID(value) == type_id(T()) ? static_cast<T>(value) : nullptr;
}

/// A new, empty dictionary of objects.
inline Ref<CFMutableDictionaryRef> make_mutable_dictionary() {
    return adopt(CFDictionaryCreateMutable(kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks,
                                           &kCFTypeDictionaryValueCallBacks));
}

/// Calls `visit(key, value)`, both borrowed, for each entry of a dictionary (null: none).
template <class Visit>
void for_each_entry(CFDictionaryRef dictionary, Visit visit) {
    if (dictionary) {
        const auto count = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
        std::vector<CFTypeRef> keys(count);
        std::vector<CFTypeRef> values(count);
        CFDictionaryGetKeysAndValues(dictionary, keys.data(), values.data());
        for (std::size_t i = 0; i < count; ++i) {
            visit(keys[i], values[i]);
        }
    }
}

/// A key of dictionaries. Code that looks up one key many times makes it once.
class Key {
public:
    Key(std::string_view utf8) : string_(make_string(utf8)) {}
    Key(const char* utf8) : Key(std::string_view(utf8)) {}

    /// The string, borrowed.
    CFStringRef get() const { return string_.get(); }

private:
    Ref<CFStringRef> string_;
};

/// The value of `key`, borrowed; null when there is none.
inline CFTypeRef value_of(CFDictionaryRef dictionary, const Key& key) {
    return CFDictionaryGetValue(dictionary, key.get());
}

/// The value of `key` as a `T`, borrowed; null when there is none or it has another type.
template <class T>
T value_of(CFDictionaryRef dictionary, const Key& key) {
    return value_as<T>(value_of(dictionary, key));
}

} // namespace lumo
