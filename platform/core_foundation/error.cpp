// Errors of property lists.
#include "core_foundation/error.h"

#include "core_foundation/string.h"

namespace lumo::platform {

Owned make_cocoa_error(CFIndex code, std::string_view description) {
    return Owned{
        new Error{code, make_string_ascii("NSCocoaErrorDomain"), make_string_ascii(description)}};
}

} // namespace lumo::platform

using namespace lumo::platform;

CFTypeID CFErrorGetTypeID() {
    return static_cast<CFTypeID>(Kind::error);
}

CFErrorDomain CFErrorGetDomain(CFErrorRef error) {
    return reinterpret_cast<CFErrorDomain>(as<Error>(error).domain.get());
}

CFIndex CFErrorGetCode(CFErrorRef error) {
    return as<Error>(error).code;
}

CFStringRef CFErrorCopyDescription(CFErrorRef error) {
    return reinterpret_cast<CFStringRef>(share(as<Error>(error).description.get()).release());
}
