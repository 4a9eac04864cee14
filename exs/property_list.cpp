#include "property_list.h"

#include "base/descriptor.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

namespace lumo::exs {
namespace {

/// Opens the file at `path` and writes the bytes with one write() call, so that a full disk is
/// detected here and reported, not at close. (A stream, even an unbuffered one, may split the
/// write.) write() is called again only after a short write; it then reports the cause.
bool write_file(const char* path, int existing, const UInt8* bytes, std::size_t size) {
    const Descriptor file(
        uninterrupted([&] { return open(path, O_WRONLY | O_CREAT | O_CLOEXEC | existing, 0666); }));
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

std::int32_t integer(CFDictionaryRef dictionary, const Key& key, std::int32_t default_value) {
    const CFTypeRef value = value_of(dictionary, key);
    if (const auto number = value_as<CFNumberRef>(value)) {
        std::int32_t result = default_value;
        CFNumberGetValue(number, kCFNumberIntType, &result);
        return result;
    }
    const auto boolean = value_as<CFBooleanRef>(value);
    return boolean ? CFBooleanGetValue(boolean) : default_value;
}

bool write_plist(const void* list, const std::filesystem::path& path, int existing) {
    const auto data = adopt(CFPropertyListCreateData(kCFAllocatorDefault, list,
                                                     kCFPropertyListBinaryFormat_v1_0, 0, nullptr));
    if (!data) {
        errno = EINVAL;
        return false;
    }
    return write_file(path.c_str(), existing, CFDataGetBytePtr(data.get()),
                      static_cast<std::size_t>(CFDataGetLength(data.get())));
}

} // namespace lumo::exs
