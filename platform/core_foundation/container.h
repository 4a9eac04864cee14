// The common header of arrays, dictionaries and sets. They own the objects that they contain.
#pragma once

#include "core_foundation/object.h"

#include <cstddef>

namespace lumo::platform {

/// The header of every container. `count` of `capacity` places are in use.
struct Container : Object {
    Container(Kind container_kind, std::size_t room)
        : Object{container_kind}, count{0}, capacity{room} {}

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

/// Stops the process unless `callbacks` are `those_of_objects`: containers contain objects only.
template <class CallBacks>
void require_objects(const CallBacks* callbacks, const CallBacks& those_of_objects) noexcept {
    if (callbacks != &those_of_objects) {
        __builtin_trap();
    }
}

} // namespace lumo::platform
