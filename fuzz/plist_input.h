// Shared by the fuzz targets of property lists.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <type_traits>

/// The deleter of Holder.
struct Release {
    void operator()(const void* object) const { CFRelease(object); }
};

/// Owns the result of a Create function.
template <class Ref>
using Holder = std::unique_ptr<std::remove_pointer_t<Ref>, Release>;

/// The property list in these bytes; null when there is none.
inline Holder<CFPropertyListRef> read_list(const std::uint8_t* bytes, std::size_t size,
                                           CFPropertyListFormat* format = nullptr) {
    const Holder<CFDataRef> data{CFDataCreate(nullptr, bytes, static_cast<CFIndex>(size))};
    return Holder<CFPropertyListRef>{CFPropertyListCreateWithData(
        nullptr, data.get(), kCFPropertyListImmutable, format, nullptr)};
}

/// The binary form of a property list; null when it cannot be written.
inline Holder<CFDataRef> write_list(CFPropertyListRef list) {
    return Holder<CFDataRef>{
        CFPropertyListCreateData(nullptr, list, kCFPropertyListBinaryFormat_v1_0, 0, nullptr)};
}

/// Stops the fuzzer when `holds` is false.
inline void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}
