// The order in which the objects of a property list are written: that of CoreFoundation, except for
// the entries of a dictionary, whose order there depends on its hash table.
#include "core_foundation/string.h"
#include "property_list/object_graph.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <utility>
#include <vector>

namespace lumo::platform {
namespace {

/// Compares by UTF-16 units.
bool precedes(const String& a, const String& b) {
    if (a.is_ascii() && b.is_ascii()) {
        return a.ascii() < b.ascii();
    }
    const std::size_t shared = std::min(a.length, b.length);
    for (std::size_t i = 0; i < shared; ++i) {
        if (a.unit(i) != b.unit(i)) {
            return a.unit(i) < b.unit(i);
        }
    }
    return a.length < b.length;
}

/// All nodes that are keys of a dictionary, sorted.
std::vector<std::uint32_t> sorted_keys(ObjectGraph& graph) {
    std::vector<bool> is_key(graph.nodes.size());
    std::vector<std::uint32_t> keys;
    for (const ObjectGraph::Node& node : graph.nodes) {
        if (node.object->kind == Kind::dictionary) {
            for (const std::uint32_t key : graph.refs_of(node).first(node.ref_count / 2)) {
                if (!is_key[key]) {
                    is_key[key] = true;
                    keys.push_back(key);
                }
            }
        }
    }
    std::sort(keys.begin(), keys.end(), [&](std::uint32_t a, std::uint32_t b) {
        return precedes(as<String>(graph.nodes[a].object), as<String>(graph.nodes[b].object));
    });
    return keys;
}

/// Sorts the entries of each dictionary by key. Keys are ranked once, so strings are not compared
/// again for each dictionary.
void sort_dictionaries(ObjectGraph& graph) {
    const std::vector<std::uint32_t> keys = sorted_keys(graph);
    std::vector<std::uint32_t> ranks(graph.nodes.size());
    for (std::uint32_t rank = 0; rank < keys.size(); ++rank) {
        ranks[keys[rank]] = rank;
    }
    std::vector<std::pair<std::uint32_t, std::uint32_t>> entries; // rank of the key, value
    for (const ObjectGraph::Node& node : graph.nodes) {
        if (node.object->kind != Kind::dictionary) {
            continue;
        }
        const std::span<std::uint32_t> refs = graph.refs_of(node);
        const std::size_t count = refs.size() / 2;
        entries.clear();
        for (std::size_t i = 0; i < count; ++i) {
            entries.emplace_back(ranks[refs[i]], refs[count + i]);
        }
        std::sort(entries.begin(), entries.end());
        for (std::size_t i = 0; i < count; ++i) {
            refs[i] = keys[entries[i].first];
            refs[count + i] = entries[i].second;
        }
    }
}

/// Numbers the nodes in depth-first order.
class Numbering {
public:
    explicit Numbering(ObjectGraph& graph)
        : graph_{graph}, numbers_(graph.nodes.size(), unnumbered), is_open_(graph.nodes.size()) {
        order_.reserve(graph.nodes.size());
    }

    /// Computes the numbers. False when a container contains itself.
    bool run() {
        enter(0);
        while (!open_.empty()) {
            Open& top = open_.back();
            const auto refs = graph_.refs_of(graph_.nodes[top.node]);
            if (top.next == refs.size()) {
                is_open_[top.node] = false;
                open_.pop_back();
            } else if (!enter(refs[top.next++])) {
                return false;
            }
        }
        return true;
    }

    /// Moves each node to the index that is its number.
    void apply() {
        std::vector<ObjectGraph::Node> nodes;
        nodes.reserve(order_.size());
        for (const std::uint32_t node : order_) {
            nodes.push_back(graph_.nodes[node]);
        }
        graph_.nodes.swap(nodes);
        for (std::uint32_t& ref : graph_.refs) {
            ref = numbers_[ref];
        }
    }

private:
    static constexpr std::uint32_t unnumbered = std::numeric_limits<std::uint32_t>::max();

    /// A container that is being numbered.
    struct Open {
        std::uint32_t node;
        std::size_t next; ///< The next reference to follow.
    };

    bool enter(std::uint32_t node) {
        if (numbers_[node] != unnumbered) {
            return !is_open_[node];
        }
        numbers_[node] = static_cast<std::uint32_t>(order_.size());
        order_.push_back(node);
        if (graph_.nodes[node].ref_count > 0) {
            is_open_[node] = true;
            open_.push_back({node, 0});
        }
        return true;
    }

    ObjectGraph& graph_;
    std::vector<std::uint32_t> numbers_;
    std::vector<std::uint32_t> order_; ///< The nodes by number.
    std::vector<bool> is_open_;
    std::vector<Open> open_;
};

} // namespace

bool arrange_objects(ObjectGraph& graph) {
    sort_dictionaries(graph);
    Numbering numbering{graph};
    if (!numbering.run()) {
        return false;
    }
    numbering.apply();
    return true;
}

} // namespace lumo::platform
