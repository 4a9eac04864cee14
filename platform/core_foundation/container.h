// The common header of arrays, dictionaries and sets.
#pragma once

#include "core_foundation/object.h"

#include <cstddef>
#include <cstdint>

namespace lumo::platform {

/// The header of every container. `count` of `capacity` places are in use.
struct Container : Object {
    /// Bits of `detail`. A container created with null callbacks holds pointers that it does not
    /// own and that need not be objects.
    enum Flags : std::uint8_t { owns_keys = 1, owns_values = 2, is_mutable = 4 };

    Container(Kind container_kind, std::uint8_t flags, std::size_t room)
        : Object{container_kind, flags}, count{0}, capacity{room} {}

    bool has(Flags flag) const noexcept { return (detail & flag) != 0; }

    std::size_t count;
    union {
        std::size_t capacity;
        Container* next_dead; ///< Links containers to be destroyed.
    };
};

/// Whether objects of this kind are containers.
inline bool is_container(Kind kind) noexcept {
    return kind == Kind::array || kind == Kind::dictionary || kind == Kind::set;
}

/// Stops the process unless the container is mutable, as on a Mac.
inline void require_mutable(const Container& container) noexcept {
    if (!container.has(Container::is_mutable)) {
        __builtin_trap();
    }
}

} // namespace lumo::platform
