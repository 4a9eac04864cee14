// CoreFoundation's two functions for property lists. CoreFoundation also reads the old text format
// of NeXTSTEP, in which most text files are valid; here such files are rejected.
#include "core_foundation/objects.h"
#include "property_list/binary_reader.h"
#include "property_list/binary_trailer.h"
#include "property_list/binary_writer.h"
#include "property_list/xml_reader.h"

#include <CoreFoundation/CoreFoundation.h>

#include <new>
#include <stdexcept>

namespace lumo::platform {
namespace {

struct Reading {
    Owned value; ///< Null when the bytes are no property list.
    CFPropertyListFormat format;
};

/// Reads the binary format if the trailer is valid, else XML. A binary file with an invalid object
/// is not tried as XML, since it cannot be XML.
Reading read_property_list(std::span<const std::uint8_t> bytes) {
    if (const auto trailer = read_binary_trailer(bytes)) {
        return {read_binary(bytes, *trailer), kCFPropertyListBinaryFormat_v1_0};
    }
    const auto* characters = reinterpret_cast<const char*>(bytes.data());
    return {read_xml({characters, bytes.size()}), kCFPropertyListXMLFormat_v1_0};
}

/// Returns the result of `make`, or null when it needs more memory than there is.
template <class Make>
auto unless_too_large(Make make) -> decltype(make()) {
    try {
        return make();
    } catch (const std::bad_alloc&) {
        return {};
    } catch (const std::length_error&) {
        return {};
    }
}

} // namespace
} // namespace lumo::platform

using namespace lumo::platform;

CFPropertyListRef CFPropertyListCreateWithData(CFAllocatorRef, CFDataRef data,
                                               CFOptionFlags options, CFPropertyListFormat* format,
                                               CFErrorRef*) {
    if (!data || options != kCFPropertyListImmutable) {
        return nullptr;
    }
    auto [value, read_format] =
        unless_too_large([&] { return read_property_list(as<Data>(data).bytes()); });
    if (value && format) {
        *format = read_format;
    }
    return value.release();
}

CFDataRef CFPropertyListCreateData(CFAllocatorRef, CFPropertyListRef list,
                                   CFPropertyListFormat format, CFOptionFlags, CFErrorRef*) {
    if (format != kCFPropertyListBinaryFormat_v1_0) {
        return nullptr;
    }
    Owned data = unless_too_large([&] { return write_binary(object_of(list)); });
    return reinterpret_cast<CFDataRef>(data.release());
}
