// Arrays: the values follow the header in the same allocation.
#pragma once

#include "core_foundation/container.h"

#include <cstddef>
#include <memory>
#include <span>

namespace lumo::platform {

/// An array of objects.
struct Array : Container {
    explicit Array(std::size_t room) : Container{Kind::array, room} {}

    std::span<const Object* const> items() const noexcept {
        return {reinterpret_cast<const Object* const*>(this + 1), count};
    }
    /// Appends an object and takes ownership of its reference. The array must have room for it.
    void take(Owned item) noexcept {
        reinterpret_cast<const Object**>(this + 1)[count++] = item.release();
    }
};

/// An array of the given objects. Takes ownership of their references (`items` are null
/// afterwards).
Owned make_array(std::span<Owned> items);
/// An empty array with room for `room` objects, to be filled before it is shared.
std::unique_ptr<Array, Releaser> make_array_with_room(std::size_t room);

} // namespace lumo::platform
