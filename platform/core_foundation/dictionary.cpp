// Dictionaries and sets as objects. Entries are stored in the order of insertion; with a capacity
// of `indexed_from` or more, a hash table of slots follows them. A slot holds the index of an entry
// plus one, or 0 when it is free.
#include "core_foundation/dictionary.h"

#include "core_foundation/hashing.h"
#include "core_foundation/string.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

namespace lumo::platform {
namespace {

constexpr std::size_t indexed_from = 9;

/// The number of slots for a capacity: a power of two that is at most three quarters full.
std::size_t slots_for(std::size_t room) noexcept {
    return room < indexed_from ? 0 : std::bit_ceil(room + room / 3 + 1);
}

std::size_t storage_size(std::size_t room) {
    if (room > std::numeric_limits<std::uint32_t>::max() / 2) {
        throw std::length_error{"dictionary too large"};
    }
    return room * sizeof(Entry) + slots_for(room) * sizeof(std::uint32_t);
}

/// Sets the dictionary's storage to `memory` and clears the index.
void use_storage(Dictionary& dictionary, void* memory, std::size_t room) noexcept {
    const std::size_t slots = slots_for(room);
    dictionary.entries = static_cast<Entry*>(memory);
    dictionary.capacity = room;
    dictionary.index = nullptr;
    if (slots != 0) {
        dictionary.index = reinterpret_cast<std::uint32_t*>(dictionary.entries + room);
        dictionary.index_mask = static_cast<std::uint32_t>(slots - 1);
        std::memset(dictionary.index, 0, slots * sizeof(std::uint32_t));
    }
}

/// Whether a key is compared by value and not by address. Containers in a set are compared by
/// address: their hash is only their count, so a file with a large set of them would take quadratic
/// time.
bool goes_by_value(const Dictionary& dictionary, const Object* key) noexcept {
    return dictionary.kind != Kind::set || !is_container(key->kind);
}

std::uint32_t hash_key(const Dictionary& dictionary, const Object* key) noexcept {
    return goes_by_value(dictionary, key) ? hash(key)
                                          : hash_word(reinterpret_cast<std::uintptr_t>(key));
}

bool same_key(const Dictionary& dictionary, const Object* held, const Object* key) {
    if (held == key) {
        return true;
    }
    if (!goes_by_value(dictionary, key) || held->kind != key->kind) {
        return false;
    }
    return held->kind == Kind::string
               ? equal_strings(static_cast<const String&>(*held), static_cast<const String&>(*key))
               : equal(held, key);
}

Entry* find_in_row(const Dictionary& dictionary, const Object* key) {
    for (std::size_t i = 0; i < dictionary.count; ++i) {
        if (same_key(dictionary, dictionary.entries[i].key, key)) {
            return dictionary.entries + i;
        }
    }
    return nullptr;
}

/// The entry of a key, or null and the free slot for its index (null without a hash table).
struct Place {
    Entry* entry;
    std::uint32_t* slot;
};

Place place_of(const Dictionary& dictionary, const Object* key) {
    if (dictionary.index == nullptr) {
        return {find_in_row(dictionary, key), nullptr};
    }
    for (std::uint32_t at = hash_key(dictionary, key);; ++at) {
        std::uint32_t* slot = dictionary.index + (at & dictionary.index_mask);
        if (*slot == 0) {
            return {nullptr, slot};
        }
        Entry* entry = dictionary.entries + (*slot - 1);
        if (same_key(dictionary, entry->key, key)) {
            return {entry, slot};
        }
    }
}

void grow(Dictionary& dictionary) {
    const std::size_t room = std::max<std::size_t>(4, dictionary.capacity * 2);
    void* memory = ::operator new(storage_size(room));
    const std::span<const Entry> old = dictionary.items();
    const bool was_inline = dictionary.is_inline();
    use_storage(dictionary, memory, room);
    dictionary.count = 0;
    for (const Entry& entry : old) {
        insert(dictionary, entry);
    }
    if (!was_inline) {
        ::operator delete(const_cast<Entry*>(old.data()));
    }
}

/// Whether the dictionary has exactly these keys, as the same objects in this order, and no spare
/// capacity.
bool has_just_these_keys(const Dictionary& dictionary, std::span<const Owned> keys_and_values) {
    const std::span<const Entry> entries = dictionary.items();
    if (entries.size() * 2 != keys_and_values.size() || entries.size() != dictionary.capacity) {
        return false;
    }
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (entries[i].key != keys_and_values[2 * i].get()) {
            return false;
        }
    }
    return true;
}

/// Fills an empty dictionary with the keys of `model`, which has the same capacity.
void fill_like(const Dictionary& model, Dictionary& dictionary, std::span<Owned> keys_and_values) {
    for (std::size_t i = 0; i + 1 < keys_and_values.size(); i += 2) {
        dictionary.entries[dictionary.count++] = {keys_and_values[i].release(),
                                                  keys_and_values[i + 1].release()};
    }
    if (dictionary.index != nullptr) {
        std::copy_n(model.index, std::size_t{model.index_mask} + 1, dictionary.index);
    }
}

} // namespace

Dictionary* allocate_dictionary(Kind kind, std::size_t room) {
    void* memory = ::operator new(sizeof(Dictionary) + storage_size(room));
    auto* dictionary = new (memory) Dictionary{kind, room};
    use_storage(*dictionary, dictionary + 1, room);
    return dictionary;
}

Entry* insert(Dictionary& dictionary, Entry entry) {
    Place place = place_of(dictionary, entry.key);
    if (place.entry != nullptr) {
        return place.entry;
    }
    if (dictionary.count == dictionary.capacity) {
        grow(dictionary);
        place = place_of(dictionary, entry.key);
    }
    dictionary.entries[dictionary.count++] = entry;
    if (place.slot != nullptr) {
        *place.slot = static_cast<std::uint32_t>(dictionary.count);
    }
    return nullptr;
}

const Entry* find(const Dictionary& dictionary, const Object* key) {
    return place_of(dictionary, key).entry;
}

Owned make_dictionary(std::span<Owned> keys_and_values, Duplicates duplicates,
                      const Dictionary* similar) {
    Dictionary* dictionary = allocate_dictionary(Kind::dictionary, keys_and_values.size() / 2);
    Owned result{dictionary};
    if (similar != nullptr && has_just_these_keys(*similar, keys_and_values)) {
        fill_like(*similar, *dictionary, keys_and_values);
        return result;
    }
    for (std::size_t i = 0; i + 1 < keys_and_values.size(); i += 2) {
        Owned& key = keys_and_values[i];
        Owned& value = keys_and_values[i + 1];
        Entry* present = insert(*dictionary, {key.get(), value.get()});
        if (present == nullptr) {
            static_cast<void>(key.release());
            static_cast<void>(value.release());
            continue;
        }
        if (duplicates == Duplicates::last_wins) {
            const Object* replaced = std::exchange(present->value, value.release());
            value.reset(replaced);
        }
        key.reset();
        value.reset();
    }
    return result;
}

Owned make_set(std::span<Owned> items) {
    Dictionary* set = allocate_dictionary(Kind::set, items.size());
    Owned result{set};
    for (Owned& item : items) {
        if (insert(*set, {item.get(), nullptr}) == nullptr) {
            static_cast<void>(item.release());
        }
        item.reset();
    }
    return result;
}

} // namespace lumo::platform
