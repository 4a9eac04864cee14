// Shared by the fuzz targets of property lists.
#pragma once

#include "base/ref.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

/// The property list in these bytes; null when there is none.
inline lumo::Ref<CFPropertyListRef> read_list(const std::uint8_t* bytes, std::size_t size,
                                              CFPropertyListFormat* format = nullptr) {
    const auto data = lumo::adopt(CFDataCreate(nullptr, bytes, static_cast<CFIndex>(size)));
    return lumo::adopt(CFPropertyListCreateWithData(nullptr, data.get(), kCFPropertyListImmutable,
                                                    format, nullptr));
}

/// The binary form of a property list; null when it cannot be written.
inline lumo::Ref<CFDataRef> write_list(CFPropertyListRef list) {
    return lumo::adopt(
        CFPropertyListCreateData(nullptr, list, kCFPropertyListBinaryFormat_v1_0, 0, nullptr));
}

/// Stops the fuzzer when `holds` is false.
inline void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}
