// Errors of property lists. All have the same domain.
#include "core_foundation/error.h"

#include "core_foundation/string.h"

using namespace lumo::platform;

const CFStringRef kCFErrorDomainCocoa =
    reinterpret_cast<CFStringRef>(make_string_ascii("NSCocoaErrorDomain").release());

Owned lumo::platform::make_cocoa_error(CFIndex code, std::string_view description) {
    return Owned{
        new Error{code, share(object_of(kCFErrorDomainCocoa)), make_string_ascii(description)}};
}

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
