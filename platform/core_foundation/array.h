// Arrays: one allocation when made from their values, growing storage when mutable.
#pragma once

#include "core_foundation/container.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <span>

namespace lumo::platform {

/// An array of objects or, with null callbacks, of bare pointers.
struct Array : Container {
    Array(std::uint8_t flags, std::size_t room) : Container{Kind::array, flags, room} {}

    std::span<const Object* const> items() const noexcept { return {values, count}; }
    /// Whether the values stand behind the header, in the same allocation.
    bool is_inline() const noexcept {
        return static_cast<const void*>(values) == static_cast<const void*>(this + 1);
    }

    /// Adds an object at the end, for which there must be room, and takes over its reference.
    void take(Owned item) noexcept { values[count++] = item.release(); }

    const Object** values = nullptr;
};

/// An array of the given objects, whose references it takes over (they are null afterwards).
Owned make_array(std::span<Owned> items);
/// An empty array with room for `room` objects, to be filled before anybody else sees it.
std::unique_ptr<Array, Releaser> make_array_with_room(std::size_t room);

/// Drops everything the array owns: `drop_child` is called with each object, then the storage of
/// the values goes.
template <class DropChild>
void empty_array(Array& array, DropChild drop_child) noexcept {
    if (array.has(Container::owns_values)) {
        for (const Object* item : array.items()) {
            drop_child(item);
        }
    }
    if (!array.is_inline()) {
        ::operator delete(array.values);
    }
}

} // namespace lumo::platform
