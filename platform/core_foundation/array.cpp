// Arrays and their C functions.
#include "core_foundation/array.h"

#include <cstddef>
#include <new>
#include <utility>

namespace lumo::platform {

Owned make_array(std::span<Owned> items) {
    auto array = make_array_with_room(items.size());
    for (Owned& item : items) {
        array->take(std::move(item));
    }
    return array;
}

std::unique_ptr<Array, Releaser> make_array_with_room(std::size_t room) {
    void* memory = ::operator new(sizeof(Array) + room * sizeof(void*));
    return std::unique_ptr<Array, Releaser>{new (memory) Array{room}};
}

} // namespace lumo::platform

using namespace lumo::platform;

const CFArrayCallBacks kCFTypeArrayCallBacks = {0, nullptr, nullptr, nullptr, CFEqual};

CFTypeID CFArrayGetTypeID() {
    return static_cast<CFTypeID>(Kind::array);
}

CFArrayRef CFArrayCreate(CFAllocatorRef, const void** values, CFIndex count,
                         const CFArrayCallBacks* callbacks) {
    require_objects(callbacks, kCFTypeArrayCallBacks);
    auto array = make_array_with_room(static_cast<std::size_t>(count));
    for (CFIndex i = 0; i < count; ++i) {
        array->take(share(object_of(values[i])));
    }
    return reinterpret_cast<CFArrayRef>(array.release());
}

CFIndex CFArrayGetCount(CFArrayRef array) {
    return static_cast<CFIndex>(as<Array>(array).count);
}

const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index) {
    const auto items = as<Array>(array).items();
    if (index < 0 || static_cast<std::size_t>(index) >= items.size()) {
        __builtin_trap();
    }
    return items[static_cast<std::size_t>(index)];
}
