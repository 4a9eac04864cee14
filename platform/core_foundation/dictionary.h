// Dictionaries and sets: a flat array of entries in insertion order. Small ones are searched
// linearly, larger ones through an open-addressing index that follows the entries.
#pragma once

#include "core_foundation/container.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace lumo::platform {

/// A key and its value, each an owned reference.
struct Entry {
    const Object* key;
    const Object* value; ///< Null in a set.
};

/// A dictionary or, depending on `kind`, a set.
struct Dictionary : Container {
    using Container::Container;

    /// The entries in the order in which their keys were first inserted.
    std::span<const Entry> items() const noexcept { return {entries, count}; }
    /// Whether the entries follow the header, in the same allocation.
    bool is_inline() const noexcept {
        return static_cast<const void*>(entries) == static_cast<const void*>(this + 1);
    }

    Entry* entries = nullptr;
    std::uint32_t* index = nullptr; ///< Null for a small capacity; else entry index + 1, 0 = free.
    std::uint32_t index_mask = 0;
    bool is_mutable = false; ///< Whether CFDictionarySetValue may change it.
};

/// Which of several entries with equal keys is kept.
enum class Duplicates { first_wins, last_wins };

/// A dictionary of alternating keys and values (key, value, key, value, ...). Takes ownership of
/// their references (they are null afterwards).
///
/// When the keys are the same objects, in the same order, as those of `similar`, its index is
/// copied and no key is hashed or compared: files often contain many dictionaries with the same
/// keys.
Owned make_dictionary(std::span<Owned> keys_and_values, Duplicates duplicates,
                      const Dictionary* similar = nullptr);
/// A set of the given objects. Takes ownership of their references. Equal objects are stored once,
/// but containers are compared by address.
Owned make_set(std::span<Owned> items);

/// The entry with an equal key, or null.
const Entry* find(const Dictionary& dictionary, const Object* key);

/// An empty dictionary or set with room for `room` entries after its header.
Dictionary* allocate_dictionary(Kind kind, std::size_t room);
/// Adds an entry, without retaining it, and returns null. If an equal key is present, changes
/// nothing and returns the present entry.
Entry* insert(Dictionary& dictionary, Entry entry);

} // namespace lumo::platform
