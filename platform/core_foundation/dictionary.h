// Dictionaries and sets: flat entries in the order of insertion. Few are searched one by one, many
// through an index of open addressing behind them.
#pragma once

#include "core_foundation/container.h"

#include <cstddef>
#include <cstdint>
#include <new>
#include <optional>
#include <span>

namespace lumo::platform {

/// A key and its value, both references or both bare pointers, as the dictionary's flags tell.
struct Entry {
    const Object* key;
    const Object* value; ///< Null in a set.
};

/// A dictionary or, by its kind, a set.
struct Dictionary : Container {
    Dictionary(Kind dictionary_kind, std::uint8_t flags, std::size_t room)
        : Container{dictionary_kind, flags, room} {}

    /// The entries in their fixed order: that of the first insertion of each key.
    std::span<const Entry> items() const noexcept { return {entries, count}; }
    /// Whether the entries stand behind the header, in the same allocation.
    bool is_inline() const noexcept {
        return static_cast<const void*>(entries) == static_cast<const void*>(this + 1);
    }

    Entry* entries = nullptr;
    std::uint32_t* index = nullptr; ///< Null while the capacity is small; else 1 + entry, 0 = free.
    std::uint32_t index_mask = 0;
};

/// Which of several entries with equal keys stays.
enum class Duplicates { first_wins, last_wins };

/// A dictionary of keys and values in turn (key, value, key, value, ...), whose references it takes
/// over (they are null afterwards).
///
/// When the keys are those of `similar` one by one, the same objects and not just equal ones, then
/// they are not looked at again: readers make row after row of dictionaries with the same keys.
Owned make_dictionary(std::span<Owned> keys_and_values, Duplicates duplicates,
                      const Dictionary* similar = nullptr);
/// A set of the given objects, whose references it takes over. Equal ones are held once, but
/// containers are told apart by their addresses.
Owned make_set(std::span<Owned> items);

/// The entry with an equal key, or null.
const Entry* find(const Dictionary& dictionary, const void* key);

/// An empty dictionary or set with room for `room` entries behind its header.
Dictionary* allocate_dictionary(Kind kind, std::uint8_t flags, std::size_t room);
/// Adds an entry, without counting references. When the key is there already, nothing changes and
/// the present entry comes back; otherwise null.
Entry* insert(Dictionary& dictionary, Entry entry);
/// Takes out the entry with an equal key and hands it over; nothing when there is none. Takes time
/// in proportion to the number of entries, whose order stays.
std::optional<Entry> remove(Dictionary& dictionary, const void* key);

/// Drops everything the dictionary owns, as empty_array does.
template <class DropChild>
void empty_dictionary(Dictionary& dictionary, DropChild drop_child) noexcept {
    for (const Entry& entry : dictionary.items()) {
        if (dictionary.has(Container::owns_keys)) {
            drop_child(entry.key);
        }
        if (dictionary.has(Container::owns_values)) {
            drop_child(entry.value);
        }
    }
    if (!dictionary.is_inline()) {
        ::operator delete(dictionary.entries);
    }
}

} // namespace lumo::platform
