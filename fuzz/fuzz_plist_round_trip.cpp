// Reads a property list in either form, writes it and reads it back: the value must be equal, and
// so must the bytes when it is written again.
#include "plist_input.h"

#include <cstring>

namespace {

bool same_bytes(CFDataRef a, CFDataRef b) {
    const CFIndex size = CFDataGetLength(a);
    return size == CFDataGetLength(b) && std::memcmp(CFDataGetBytePtr(a), CFDataGetBytePtr(b),
                                                     static_cast<std::size_t>(size)) == 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CFPropertyListFormat format{};
    const auto list = read_list(data, size, &format);
    if (!list) {
        return 0;
    }
    const auto written = write_list(list.get());
    if (!written) {
        return 0;
    }
    const auto again = read_list(CFDataGetBytePtr(written.get()),
                                 static_cast<std::size_t>(CFDataGetLength(written.get())));
    require(static_cast<bool>(again));
    require(format != kCFPropertyListXMLFormat_v1_0 || CFEqual(list.get(), again.get()));
    const auto rewritten = write_list(again.get());
    require(rewritten && same_bytes(written.get(), rewritten.get()));
    return 0;
}
