// Reads a property list in either form, writes it and reads it back: the value must be equal, and
// so must the bytes when it is written again.
#include "plist_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CFPropertyListFormat format{};
    const auto list = list_of(text_of(data, size), &format);
    if (!list) {
        return 0;
    }
    const auto written = binary_form(list.get());
    if (!written) {
        return 0;
    }
    const auto again = list_of(written.get());
    require(static_cast<bool>(again));
    require(format != kCFPropertyListXMLFormat_v1_0 || CFEqual(list.get(), again.get()));
    const auto rewritten = binary_form(again.get());
    require(rewritten && bytes_of(written.get()) == bytes_of(rewritten.get()));
    return 0;
}
