// The C functions of strings.
#include "core_foundation/encodings.h"

#include <cstdint>
#include <limits>

using namespace lumo::platform;

namespace {

CFStringRef as_result(Owned string) noexcept {
    return reinterpret_cast<CFStringRef>(string.release());
}

/// The maximum number of bytes per UTF-16 unit in an encoding.
CFIndex bytes_per_unit(CFStringEncoding encoding) noexcept {
    switch (encoding) {
    case kCFStringEncodingUTF8:
        return 3;
    case kCFStringEncodingUTF16:
    case kCFStringEncodingUTF16BE:
    case kCFStringEncodingUTF16LE:
        return 2;
    default:
        return 1;
    }
}

} // namespace

CFTypeID CFStringGetTypeID() {
    return static_cast<CFTypeID>(Kind::string);
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char* text, CFStringEncoding encoding) {
    return as_result(decode(text, encoding, false));
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex count,
                                    CFStringEncoding encoding, Boolean is_external) {
    const auto* text = reinterpret_cast<const char*>(bytes);
    return as_result(decode({text, static_cast<std::size_t>(count)}, encoding, is_external != 0));
}

CFIndex CFStringGetLength(CFStringRef string) {
    return as<String>(string).length;
}

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding) {
    const CFIndex factor = bytes_per_unit(encoding);
    return length > std::numeric_limits<CFIndex>::max() / factor ? kCFNotFound : length * factor;
}

CFIndex CFStringGetBytes(CFStringRef reference, CFRange range, CFStringEncoding encoding,
                         UInt8 loss_byte, Boolean is_external, UInt8* buffer, CFIndex size,
                         CFIndex* used) {
    const auto first = static_cast<std::size_t>(range.location);
    const Encoded encoded =
        encode(as<String>(reference), first, first + static_cast<std::size_t>(range.length),
               encoding, loss_byte, is_external != 0, buffer, static_cast<std::size_t>(size));
    if (used != nullptr) {
        *used = static_cast<CFIndex>(encoded.bytes);
    }
    return static_cast<CFIndex>(encoded.units);
}

Boolean CFStringGetCString(CFStringRef reference, char* buffer, CFIndex size,
                           CFStringEncoding encoding) {
    if (size <= 0) {
        return false;
    }
    const auto& string = as<String>(reference);
    const Encoded encoded =
        encode(string, 0, string.length, encoding, 0, false,
               reinterpret_cast<std::uint8_t*>(buffer), static_cast<std::size_t>(size) - 1);
    const bool is_whole = encoded.units == string.length;
    buffer[is_whole ? encoded.bytes : 0] = '\0';
    return is_whole;
}
