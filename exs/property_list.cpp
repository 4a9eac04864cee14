// Access to property lists. Each look-up creates a key string and releases it; the type of a value
// is checked before it is cast.
#include "property_list.h"

#include "base/descriptor.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstddef>

namespace lumo::exs {
namespace {

template <typename T>
T typed_value(CFDictionaryRef dictionary, const char* key, CFTypeID type) {
    const CFTypeRef value = value_of(dictionary, key);
    return value && CFGetTypeID(value) == type ? static_cast<T>(value) : nullptr;
}

/// Creates or truncates the file at `path` and writes the bytes with one write() call, so that a
/// full disk is detected here and reported, not at close. (A stream, even an unbuffered one, may
/// split the write.) write() is called again only after a short write; it then reports the cause.
bool write_file(const char* path, const UInt8* bytes, std::size_t size) {
    const Descriptor file(
        uninterrupted([&] { return open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666); }));
    while (file && size > 0) {
        const ssize_t count = uninterrupted([&] { return write(file.get(), bytes, size); });
        if (count <= 0) {
            return false;
        }
        bytes += count;
        size -= static_cast<std::size_t>(count);
    }
    return static_cast<bool>(file);
}

} // namespace

Ref<CFStringRef> make_string(const char* text) {
    return adopt(CFStringCreateWithCString(kCFAllocatorDefault, text, kCFStringEncodingUTF8));
}

std::string to_string(CFStringRef string) {
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

CFTypeRef value_of(CFDictionaryRef dictionary, const char* key) {
    return CFDictionaryGetValue(dictionary, make_string(key).get());
}

CFDictionaryRef dictionary_of(CFDictionaryRef dictionary, const char* key) {
    return typed_value<CFDictionaryRef>(dictionary, key, CFDictionaryGetTypeID());
}

CFArrayRef array_of(CFDictionaryRef dictionary, const char* key) {
    return typed_value<CFArrayRef>(dictionary, key, CFArrayGetTypeID());
}

CFStringRef string_of(CFDictionaryRef dictionary, const char* key) {
    return typed_value<CFStringRef>(dictionary, key, CFStringGetTypeID());
}

std::int32_t integer(CFDictionaryRef dictionary, const char* key, std::int32_t default_value) {
    const CFTypeRef value = value_of(dictionary, key);
    if (!value) {
        return default_value;
    }
    if (CFGetTypeID(value) == CFNumberGetTypeID()) {
        std::int32_t number = default_value;
        CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberIntType, &number);
        return number;
    }
    if (CFGetTypeID(value) == CFBooleanGetTypeID()) {
        return CFBooleanGetValue(static_cast<CFBooleanRef>(value)) ? 1 : 0;
    }
    return default_value;
}

bool write_plist(const void* list, const std::filesystem::path& path) {
    const auto data = adopt(CFPropertyListCreateData(kCFAllocatorDefault, list,
                                                     kCFPropertyListBinaryFormat_v1_0, 0, nullptr));
    if (!data) {
        return false;
    }
    return write_file(path.c_str(), CFDataGetBytePtr(data.get()),
                      static_cast<std::size_t>(CFDataGetLength(data.get())));
}

} // namespace lumo::exs
