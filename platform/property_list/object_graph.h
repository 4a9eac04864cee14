// The objects of a property list by index, each value once, as in a binary file.
#pragma once

#include "core_foundation/object.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace lumo::platform {

/// Objects by index, and the references of the containers among them. The objects are borrowed.
struct ObjectGraph {
    /// An object and, for a container, its references; those of a dictionary are first the keys,
    /// then the values.
    struct Node {
        const Object* object;
        std::size_t first_ref = 0; ///< Index of its first reference in `refs`.
        std::size_t ref_count = 0;
    };

    /// The references of a container.
    std::span<std::uint32_t> refs_of(const Node& node) {
        return std::span{refs}.subspan(node.first_ref, node.ref_count);
    }

    std::vector<Node> nodes; ///< The root is the first.
    std::vector<std::uint32_t> refs;
};

/// All objects reachable from `root`. Leaves that are equal and of the same kind share a node; each
/// container has its own. Nothing when an object cannot be part of a property list or a key is not
/// a string. The graph may still have cycles.
std::optional<ObjectGraph> collect_objects(const Object* root);

/// Sorts the nodes into the order of the file, which depends on the values alone: depth first from
/// the root, the keys of a dictionary before its values, its entries sorted by key. False when a
/// container contains itself.
bool arrange_objects(ObjectGraph& graph);

} // namespace lumo::platform
