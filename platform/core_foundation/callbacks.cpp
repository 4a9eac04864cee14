// The callback structures of CoreFoundation objects. They are identified by their functions, so a
// copy of one has the same meaning; containers never call through them.
#include "core_foundation/callbacks.h"

#include <cstdint>

namespace lumo::platform {
namespace {

const void* retain_object(CFAllocatorRef, const void* object) {
    return CFRetain(object);
}
void release_object(CFAllocatorRef, const void* object) {
    CFRelease(object);
}

/// `flag` when the callbacks are those of objects, 0 when they are null; others stop the process.
template <class CallBacks>
std::uint8_t flag_of(const CallBacks* callbacks, Container::Flags flag) noexcept {
    if (callbacks == nullptr || (callbacks->retain == nullptr && callbacks->release == nullptr &&
                                 callbacks->equal == nullptr)) {
        return 0;
    }
    if (callbacks->retain != retain_object || callbacks->release != release_object ||
        callbacks->equal != CFEqual) {
        __builtin_trap();
    }
    return flag;
}

} // namespace

std::uint8_t flags_of_array(const CFArrayCallBacks* callbacks) noexcept {
    return flag_of(callbacks, Container::owns_values);
}

std::uint8_t flags_of_dictionary(const CFDictionaryKeyCallBacks* keys,
                                 const CFDictionaryValueCallBacks* values) noexcept {
    return static_cast<std::uint8_t>(flag_of(keys, Container::owns_keys) |
                                     flag_of(values, Container::owns_values));
}

} // namespace lumo::platform

using namespace lumo::platform;

const CFArrayCallBacks kCFTypeArrayCallBacks = {0, retain_object, release_object, nullptr, CFEqual};
const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks = {
    0, retain_object, release_object, nullptr, CFEqual, CFHash};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks = {
    0, retain_object, release_object, nullptr, CFEqual};
