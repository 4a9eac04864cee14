// Arrays. The supported callbacks are those of CoreFoundation objects, and null.
#include "core_foundation/array.h"

#include "core_foundation/callbacks.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>

namespace lumo::platform {
namespace {

constexpr std::size_t pointer_size = sizeof(void*);

/// Allocates an array with room for `room` values after its header.
Array* allocate(std::uint8_t flags, std::size_t room) {
    auto* array = new (::operator new(sizeof(Array) + room * pointer_size)) Array{flags, room};
    array->values = reinterpret_cast<const Object**>(array + 1);
    return array;
}

void reserve(Array& array, std::size_t room) {
    if (room <= array.capacity) {
        return;
    }
    room = std::max(room, array.capacity * 2);
    auto** values = static_cast<const Object**>(::operator new(room* pointer_size));
    std::copy_n(array.values, array.count, values);
    if (!array.is_inline()) {
        ::operator delete(array.values);
    }
    array.values = values;
    array.capacity = room;
}

void append(Array& array, const void* value) {
    reserve(array, array.count + 1);
    if (array.has(Container::owns_values)) {
        retain(object_of(value));
    }
    array.values[array.count++] = object_of(value);
}

Array& mutable_array(CFMutableArrayRef reference) {
    auto& array = const_cast<Array&>(as<Array>(reference));
    require_mutable(array);
    return array;
}

} // namespace

Owned make_array(std::span<Owned> items) {
    auto array = make_array_with_room(items.size());
    for (Owned& item : items) {
        array->take(std::move(item));
    }
    return array;
}

std::unique_ptr<Array, Releaser> make_array_with_room(std::size_t room) {
    return std::unique_ptr<Array, Releaser>{allocate(Container::owns_values, room)};
}

} // namespace lumo::platform

using namespace lumo::platform;

CFTypeID CFArrayGetTypeID() {
    return static_cast<CFTypeID>(Kind::array);
}

CFArrayRef CFArrayCreate(CFAllocatorRef, const void** values, CFIndex count,
                         const CFArrayCallBacks* callbacks) {
    Array* array = allocate(flags_of_array(callbacks), static_cast<std::size_t>(count));
    for (CFIndex i = 0; i < count; ++i) {
        append(*array, values[i]);
    }
    return reinterpret_cast<CFArrayRef>(array);
}

CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef, CFIndex, const CFArrayCallBacks* callbacks) {
    const auto flags = static_cast<std::uint8_t>(flags_of_array(callbacks) | Container::is_mutable);
    return reinterpret_cast<CFMutableArrayRef>(allocate(flags, 4));
}

void CFArrayAppendValue(CFMutableArrayRef array, const void* value) {
    append(mutable_array(array), value);
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
