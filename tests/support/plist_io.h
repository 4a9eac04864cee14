// Property lists from bytes and files, and back; for tests, benchmarks and fuzz targets.
#pragma once

#include "base/ref.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace lumo::test {

/// Data with a copy of the bytes.
inline Ref<CFDataRef> data_of(std::string_view bytes) {
    return adopt(CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(bytes.data()),
                              static_cast<CFIndex>(bytes.size())));
}

/// The bytes of `data`, borrowed.
inline std::string_view bytes_of(CFDataRef data) {
    return {reinterpret_cast<const char*>(CFDataGetBytePtr(data)),
            static_cast<std::size_t>(CFDataGetLength(data))};
}

/// The property list in `data`; nothing when there is none. `format` may be null.
inline Ref<CFPropertyListRef> list_of(CFDataRef data, CFPropertyListFormat* format = nullptr) {
    return adopt(CFPropertyListCreateWithData(kCFAllocatorDefault, data, kCFPropertyListImmutable,
                                              format, nullptr));
}
inline Ref<CFPropertyListRef> list_of(std::string_view bytes,
                                      CFPropertyListFormat* format = nullptr) {
    return list_of(data_of(bytes).get(), format);
}

/// The property list in a file; nothing when there is none.
inline Ref<CFPropertyListRef> list_in(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return list_of(std::string(std::istreambuf_iterator<char>(file), {}));
}

/// The binary form of a property list; nothing when it cannot be written.
inline Ref<CFDataRef> binary_form(CFPropertyListRef list) {
    return adopt(CFPropertyListCreateData(kCFAllocatorDefault, list,
                                          kCFPropertyListBinaryFormat_v1_0, 0, nullptr));
}

} // namespace lumo::test
