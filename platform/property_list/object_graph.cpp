// Collects breadth first: the nodes are also the queue of objects to be visited, so depth and
// cycles cause no recursion.
#include "property_list/object_graph.h"

#include "core_foundation/hashing.h"
#include "core_foundation/objects.h"
#include "property_list/hash_index.h"

#include <bit>
#include <stdexcept>
#include <utility>

namespace lumo::platform {
namespace {

/// The bits that distinguish numbers, dates and UIDs of one kind.
std::uint64_t bits_of(const Object& object) {
    switch (object.kind) {
    case Kind::number: {
        const auto& number = static_cast<const Number&>(object);
        return number.is_real() ? std::bit_cast<std::uint64_t>(number.real)
                                : static_cast<std::uint64_t>(number.integer);
    }
    case Kind::date:
        return std::bit_cast<std::uint64_t>(static_cast<const Date&>(object).time);
    default:
        return static_cast<const Uid&>(object).value;
    }
}

std::uint32_t hash_of(const Object& object) {
    switch (object.kind) {
    case Kind::string:
    case Kind::data:
        return hash(&object);
    case Kind::number:
    case Kind::date:
    case Kind::uid:
        return hash_word(bits_of(object) + static_cast<std::uint64_t>(object.kind));
    default:
        return hash_word(reinterpret_cast<std::uintptr_t>(&object));
    }
}

bool same_high_bits(const Object& a, const Object& b) {
    return static_cast<const Number&>(a).number_kind() != NumberKind::wide_integer ||
           static_cast<const WideNumber&>(a).high == static_cast<const WideNumber&>(b).high;
}

/// Whether the two would be written as the same bytes. The integer 5 and the real 5.0 would not,
/// nor would 0.0 and -0.0. Containers and booleans are compared by identity.
bool same_value(const Object& a, const Object& b) {
    if (&a == &b) {
        return true;
    }
    if (a.kind != b.kind) {
        return false;
    }
    switch (a.kind) {
    case Kind::string:
    case Kind::data:
        return equal(&a, &b);
    case Kind::number:
        return a.detail == b.detail && bits_of(a) == bits_of(b) && same_high_bits(a, b);
    case Kind::date:
    case Kind::uid:
        return bits_of(a) == bits_of(b);
    default:
        return false;
    }
}

class Collector {
public:
    std::optional<ObjectGraph> collect(const Object* root) {
        if (!number_of(root)) {
            return std::nullopt;
        }
        for (std::size_t i = 0; i < graph_.nodes.size(); ++i) {
            if (!add_children(i)) {
                return std::nullopt;
            }
        }
        return std::move(graph_);
    }

private:
    bool add_children(std::size_t node) {
        const Object* object = graph_.nodes[node].object;
        const std::size_t first_ref = graph_.refs.size();
        if (object->kind == Kind::array && !add_items(as<Array>(object))) {
            return false;
        }
        if (object->kind == Kind::dictionary && !add_entries(as<Dictionary>(object))) {
            return false;
        }
        graph_.nodes[node].first_ref = first_ref;
        graph_.nodes[node].ref_count = graph_.refs.size() - first_ref;
        return true;
    }

    bool add_items(const Array& array) {
        for (const Object* item : array.items()) {
            if (!add_ref(item)) {
                return false;
            }
        }
        return true;
    }

    bool add_entries(const Dictionary& dictionary) {
        for (const Entry& entry : dictionary.items()) {
            if (entry.key->kind != Kind::string || !add_ref(entry.key)) {
                return false;
            }
        }
        for (const Entry& entry : dictionary.items()) {
            if (!add_ref(entry.value)) {
                return false;
            }
        }
        return true;
    }

    bool add_ref(const Object* object) {
        const auto number = number_of(object);
        if (number) {
            graph_.refs.push_back(*number);
        }
        return number.has_value();
    }

    /// The index of the object's node; nothing when the object cannot be written.
    std::optional<std::uint32_t> number_of(const Object* object) {
        switch (object->kind) {
        case Kind::null:
        case Kind::set:
        case Kind::url:
            return std::nullopt;
        default:
            return find_or_add(object);
        }
    }

    std::uint32_t find_or_add(const Object* object) {
        auto& nodes = graph_.nodes;
        if (nodes.size() == HashIndex::none) {
            throw std::length_error{"too many objects for a property list"};
        }
        const auto fresh = static_cast<std::uint32_t>(nodes.size());
        const std::uint32_t number =
            index_.find_or_add(hash_of(*object), fresh, [&](std::uint32_t other) {
                return same_value(*nodes[other].object, *object);
            });
        if (number == fresh) {
            nodes.push_back({object});
        }
        return number;
    }

    ObjectGraph graph_;
    HashIndex index_;
};

} // namespace

std::optional<ObjectGraph> collect_objects(const Object* root) {
    return Collector{}.collect(root);
}

} // namespace lumo::platform
