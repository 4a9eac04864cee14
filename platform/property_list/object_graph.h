// The objects of a property list as numbers, each value once: what a binary file is made of.
#pragma once

#include "core_foundation/object.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace lumo::platform {

/// Objects by number and, by these numbers, what the containers among them hold. The objects are
/// borrowed.
struct ObjectGraph {
    /// An object; of a container also its references, in a dictionary first those to the keys, then
    /// those to the values.
    struct Node {
        const Object* object;
        std::size_t first_ref = 0; ///< Where its references begin in `refs`.
        std::size_t ref_count = 0;
    };

    /// The references of a container.
    std::span<std::uint32_t> refs_of(const Node& node) {
        return std::span{refs}.subspan(node.first_ref, node.ref_count);
    }

    std::vector<Node> nodes; ///< The root comes first.
    std::vector<std::uint32_t> refs;
};

/// Everything that `root` holds. Leaves that are equal and of the same kind are one node;
/// containers are one node each. Nothing when an object cannot stand in a property list or a key is
/// no string. Containers may still refer to themselves.
std::optional<ObjectGraph> collect_objects(const Object* root);

} // namespace lumo::platform
