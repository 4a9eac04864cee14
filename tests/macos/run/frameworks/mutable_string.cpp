// Mutable copies, normalisation and case folding. A mutable string is a string of the platform
// library with spare room, and is changed in place.
#include "frameworks/mutable_string.h"

#include "core_foundation/string.h"
#include "system/system.h"

#include <utf8proc.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

using namespace lumo::platform;

namespace {

/// An upper bound of the factor by which composing, folding and composing again make a text longer.
constexpr std::size_t max_growth = 18;

std::string utf8_of(CFStringRef string) {
    const CFRange all{0, CFStringGetLength(string)};
    CFIndex size = 0;
    CFStringGetBytes(string, all, kCFStringEncodingUTF8, 0, false, nullptr, 0, &size);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    CFStringGetBytes(string, all, kCFStringEncodingUTF8, 0, false,
                     reinterpret_cast<UInt8*>(bytes.data()), size, nullptr);
    return bytes;
}

void write(CFStringRef string, CFStringRef text) {
    auto& into = const_cast<String&>(as<String>(string));
    const auto& from = as<String>(text);
    auto* units = reinterpret_cast<char16_t*>(&into + 1);
    if (from.is_ascii()) {
        std::copy(from.ascii().begin(), from.ascii().end(), units);
    } else {
        std::copy(from.utf16().begin(), from.utf16().end(), units);
    }
    into.length = from.length;
    into.hash_cache = 0;
}

void map(CFStringRef string, int wanted) {
    const auto options = static_cast<utf8proc_option_t>(wanted | UTF8PROC_STABLE);
    const std::string text = utf8_of(string);
    const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
    const auto length = static_cast<utf8proc_ssize_t>(text.size());
    const utf8proc_ssize_t count = utf8proc_decompose(bytes, length, nullptr, 0, options);
    if (count < 0) {
        return;
    }
    std::vector<utf8proc_int32_t> points(static_cast<std::size_t>(count) + 1);
    utf8proc_decompose(bytes, length, points.data(), count, options);
    const utf8proc_ssize_t size = utf8proc_reencode(points.data(), count, options);
    CFStringRef mapped = CFStringCreateWithBytes(
        nullptr, reinterpret_cast<const UInt8*>(points.data()), size, kCFStringEncodingUTF8, false);
    write(string, mapped);
    CFRelease(mapped);
}

} // namespace

extern "C" {

CFStringRef CFStringCreateMutableCopy(CFAllocatorRef, CFIndex, CFStringRef string) {
    // Not ASCII, so that it has UTF-16 units.
    const std::u16string room(16 + max_growth * static_cast<std::size_t>(CFStringGetLength(string)),
                              u'\u00e9');
    const auto copy = reinterpret_cast<CFStringRef>(make_string_utf16(room).release());
    write(copy, string);
    return copy;
}

void CFStringNormalize(CFStringRef string, long form) {
    if (form != 2) { // kCFStringNormalizationFormC
        lumo::macos::unknown("form of CFStringNormalize", form);
    }
    map(string, UTF8PROC_COMPOSE);
}

void CFStringFold(CFStringRef string, unsigned long flags, const void*) {
    if (flags != 1) { // kCFCompareCaseInsensitive
        lumo::macos::unknown("flags of CFStringFold", static_cast<long>(flags));
    }
    map(string, UTF8PROC_CASEFOLD);
}
}
