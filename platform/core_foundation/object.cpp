// Destruction of objects, and the operations that every kind has: type, equality, hash.
#include "core_foundation/object.h"

#include "core_foundation/hashing.h"
#include "core_foundation/objects.h"
#include "core_foundation/url.h"

#include <new>
#include <utility>
#include <vector>

namespace lumo::platform {
namespace {

using Pair = std::pair<const Object*, const Object*>;

/// Frees an object without references, or, if it is a container, adds it to the list of containers
/// to be emptied.
void free_or_queue(const Object* dead, Container*& pending) noexcept {
    auto* object = const_cast<Object*>(dead);
    if (is_container(object->kind)) {
        auto* container = static_cast<Container*>(object);
        container->next_dead = std::exchange(pending, container);
    } else if (object->kind == Kind::url) {
        delete static_cast<Url*>(object);
    } else {
        ::operator delete(object);
    }
}

/// Releases the children of a container and frees its storage, except for the object itself.
void empty(Container& container, Container*& pending) noexcept {
    const auto drop_child = [&pending](const Object* child) {
        if (child != nullptr && drop(child)) {
            free_or_queue(child, pending);
        }
    };
    if (container.kind == Kind::array) {
        for (const Object* item : static_cast<Array&>(container).items()) {
            drop_child(item);
        }
        return;
    }
    auto& dictionary = static_cast<Dictionary&>(container);
    for (const Entry& entry : dictionary.items()) {
        drop_child(entry.key);
        drop_child(entry.value);
    }
    if (!dictionary.is_inline()) {
        ::operator delete(dictionary.entries);
    }
}

bool equal_leaves(const Object& a, const Object& b) {
    switch (a.kind) {
    case Kind::number:
        return equal_numbers(static_cast<const Number&>(a), static_cast<const Number&>(b));
    case Kind::string:
        return equal_strings(static_cast<const String&>(a), static_cast<const String&>(b));
    case Kind::data:
        return equal_data(static_cast<const Data&>(a), static_cast<const Data&>(b));
    case Kind::date:
        return static_cast<const Date&>(a).time == static_cast<const Date&>(b).time;
    case Kind::uid:
        return static_cast<const Uid&>(a).value == static_cast<const Uid&>(b).value;
    default:
        return false;
    }
}

void push_pairs(const Array& a, const Array& b, std::vector<Pair>& open) {
    for (std::size_t i = 0; i < a.count; ++i) {
        open.emplace_back(a.items()[i], b.items()[i]);
    }
}

bool equal_keys(const Dictionary& a, const Dictionary& b, std::vector<Pair>& open) {
    for (const Entry& entry : a.items()) {
        const Entry* other = find(b, entry.key);
        if (other == nullptr) {
            return false;
        }
        open.emplace_back(entry.value, other->value);
    }
    return true;
}

bool equal_containers(const Container& a, const Container& b, std::vector<Pair>& open) {
    if (a.count != b.count) {
        return false;
    }
    if (a.kind == Kind::array) {
        push_pairs(static_cast<const Array&>(a), static_cast<const Array&>(b), open);
        return true;
    }
    return equal_keys(static_cast<const Dictionary&>(a), static_cast<const Dictionary&>(b), open);
}

/// Compares two objects except for the children of containers; the pairs of children that remain to
/// be compared are pushed on `open`.
bool equal_so_far(const Object* a, const Object* b, std::vector<Pair>& open) {
    if (a == b) {
        return true;
    }
    if (a->kind != b->kind) {
        return false;
    }
    return is_container(a->kind) ? equal_containers(static_cast<const Container&>(*a),
                                                    static_cast<const Container&>(*b), open)
                                 : equal_leaves(*a, *b);
}

} // namespace

void destroy(const Object* object) noexcept {
    Container* pending = nullptr;
    free_or_queue(object, pending);
    while (pending != nullptr) {
        Container* container = std::exchange(pending, pending->next_dead);
        empty(*container, pending);
        ::operator delete(container);
    }
}

// Containers are compared with an explicit stack, since they may be nested deeper than the call
// stack allows; only containers used as dictionary keys are compared recursively.
bool equal(const Object* a, const Object* b) {
    std::vector<Pair> open;
    if (!equal_so_far(a, b, open)) {
        return false;
    }
    while (!open.empty()) {
        const auto [left, right] = open.back();
        open.pop_back();
        if (!equal_so_far(left, right, open)) {
            return false;
        }
    }
    return true;
}

std::uint32_t hash(const Object* object) noexcept {
    switch (object->kind) {
    case Kind::string:
        return hash_string(static_cast<const String&>(*object));
    case Kind::number:
        return hash_number(static_cast<const Number&>(*object));
    case Kind::data:
        return hash_data(static_cast<const Data&>(*object));
    case Kind::date: {
        const double time = static_cast<const Date&>(*object).time + 0.0; // -0.0 becomes 0.0
        return hash_bytes(&time, sizeof time);
    }
    case Kind::uid:
        return hash_word(static_cast<const Uid&>(*object).value);
    case Kind::array:
    case Kind::dictionary:
    case Kind::set:
        return hash_word(static_cast<const Container&>(*object).count);
    default:
        return hash_word(reinterpret_cast<std::uintptr_t>(object));
    }
}

} // namespace lumo::platform

using namespace lumo::platform;

namespace {

/// The object of a reference. A null reference stops the process, as on a Mac.
const Object* checked(CFTypeRef reference) noexcept {
    if (reference == nullptr) {
        __builtin_trap();
    }
    return object_of(reference);
}

} // namespace

const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFAllocatorRef kCFAllocatorNull = reinterpret_cast<CFAllocatorRef>(&kCFAllocatorNull);

CFTypeRef CFRetain(CFTypeRef object) {
    retain(checked(object));
    return object;
}

void CFRelease(CFTypeRef object) {
    release(checked(object));
}

CFTypeID CFGetTypeID(CFTypeRef object) {
    return static_cast<CFTypeID>(checked(object)->kind);
}

Boolean CFEqual(CFTypeRef a, CFTypeRef b) {
    return equal(checked(a), checked(b));
}

CFHashCode CFHash(CFTypeRef object) {
    return hash(checked(object));
}
