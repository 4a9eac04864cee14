// Reads any text as a property list in XML. A list that was read must be writable.
#include "plist_input.h"

#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size >= 7 && std::memcmp(data, "bplist0", 7) == 0) {
        return -1; // covered by fuzz_plist_binary
    }
    CFPropertyListFormat format{};
    if (const auto list = list_of(text_of(data, size), &format)) {
        require(format == kCFPropertyListXMLFormat_v1_0);
        require(static_cast<bool>(binary_form(list.get())));
    }
    return 0;
}
