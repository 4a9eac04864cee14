// Arrays: one allocation when created from their values, with growing storage when mutable.
#pragma once

#include "core_foundation/container.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <span>

namespace lumo::platform {

/// An array of objects or, with null callbacks, of raw pointers.
struct Array : Container {
    Array(std::uint8_t flags, std::size_t room) : Container{Kind::array, flags, room} {}

    std::span<const Object* const> items() const noexcept { return {values, count}; }
    /// Whether the values follow the header, in the same allocation.
    bool is_inline() const noexcept {
        return static_cast<const void*>(values) == static_cast<const void*>(this + 1);
    }

    /// Appends an object and takes ownership of its reference. The array must have room for it.
    void take(Owned item) noexcept { values[count++] = item.release(); }

    const Object** values = nullptr;
};

/// An array of the given objects. Takes ownership of their references (`items` are null
/// afterwards).
Owned make_array(std::span<Owned> items);
/// An empty array with room for `room` objects, to be filled before it is shared.
std::unique_ptr<Array, Releaser> make_array_with_room(std::size_t room);

/// Calls `drop_child` with each object that the array owns, then frees the storage of the values.
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
