// The C functions of dictionaries and sets. The supported callbacks are those of CoreFoundation
// objects, and null, separately for keys and values.
#include "core_foundation/callbacks.h"
#include "core_foundation/dictionary.h"

#include <cstddef>
#include <cstdint>
#include <utility>

using namespace lumo::platform;

namespace {

void retain_entry(const Dictionary& dictionary, const Entry& entry) noexcept {
    if (dictionary.has(Container::owns_keys)) {
        retain(entry.key);
    }
    if (dictionary.has(Container::owns_values)) {
        retain(entry.value);
    }
}

void release_entry(const Dictionary& dictionary, const Entry& entry) noexcept {
    if (dictionary.has(Container::owns_keys)) {
        release(entry.key);
    }
    if (dictionary.has(Container::owns_values)) {
        release(entry.value);
    }
}

/// Adds an entry and retains it. If an equal key is present, changes nothing and returns the
/// present entry.
Entry* add(Dictionary& dictionary, const void* key, const void* value) {
    const Entry entry{object_of(key), object_of(value)};
    Entry* present = insert(dictionary, entry);
    if (present == nullptr) {
        retain_entry(dictionary, entry);
    }
    return present;
}

Dictionary& mutable_dictionary(CFMutableDictionaryRef reference) {
    auto& dictionary = const_cast<Dictionary&>(as<Dictionary>(reference));
    require_mutable(dictionary);
    return dictionary;
}

} // namespace

CFTypeID CFDictionaryGetTypeID() {
    return static_cast<CFTypeID>(Kind::dictionary);
}

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef, const void** keys, const void** values,
                                   CFIndex count, const CFDictionaryKeyCallBacks* key_callbacks,
                                   const CFDictionaryValueCallBacks* value_callbacks) {
    Dictionary* dictionary =
        allocate_dictionary(Kind::dictionary, flags_of_dictionary(key_callbacks, value_callbacks),
                            static_cast<std::size_t>(count));
    for (CFIndex i = 0; i < count; ++i) {
        add(*dictionary, keys[i], values[i]);
    }
    return reinterpret_cast<CFDictionaryRef>(dictionary);
}

CFMutableDictionaryRef
CFDictionaryCreateMutable(CFAllocatorRef, CFIndex, const CFDictionaryKeyCallBacks* key_callbacks,
                          const CFDictionaryValueCallBacks* value_callbacks) {
    const int flags = flags_of_dictionary(key_callbacks, value_callbacks) | Container::is_mutable;
    return reinterpret_cast<CFMutableDictionaryRef>(
        allocate_dictionary(Kind::dictionary, static_cast<std::uint8_t>(flags), 0));
}

CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef, CFIndex,
                                                     CFDictionaryRef reference) {
    const auto& source = as<Dictionary>(reference);
    const int flags = source.detail | Container::is_mutable;
    Dictionary* copy =
        allocate_dictionary(Kind::dictionary, static_cast<std::uint8_t>(flags), source.count + 1);
    for (const Entry& entry : source.items()) {
        add(*copy, entry.key, entry.value);
    }
    return reinterpret_cast<CFMutableDictionaryRef>(copy);
}

CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary) {
    return static_cast<CFIndex>(as<Dictionary>(dictionary).count);
}

const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key) {
    const Entry* entry = find(as<Dictionary>(dictionary), key);
    return entry == nullptr ? nullptr : entry->value;
}

Boolean CFDictionaryContainsKey(CFDictionaryRef dictionary, const void* key) {
    return find(as<Dictionary>(dictionary), key) != nullptr;
}

Boolean CFDictionaryGetValueIfPresent(CFDictionaryRef dictionary, const void* key,
                                      const void** value) {
    const Entry* entry = find(as<Dictionary>(dictionary), key);
    if (entry != nullptr && value != nullptr) {
        *value = entry->value;
    }
    return entry != nullptr;
}

void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void** keys,
                                  const void** values) {
    for (const Entry& entry : as<Dictionary>(dictionary).items()) {
        if (keys != nullptr) {
            *keys++ = entry.key;
        }
        if (values != nullptr) {
            *values++ = entry.value;
        }
    }
}

void CFDictionaryAddValue(CFMutableDictionaryRef dictionary, const void* key, const void* value) {
    add(mutable_dictionary(dictionary), key, value);
}

void CFDictionarySetValue(CFMutableDictionaryRef reference, const void* key, const void* value) {
    Dictionary& dictionary = mutable_dictionary(reference);
    Entry* present = add(dictionary, key, value);
    if (present != nullptr) {
        const Entry entry{object_of(key), object_of(value)};
        retain_entry(dictionary, entry);
        release_entry(dictionary, std::exchange(*present, entry));
    }
}

void CFDictionaryRemoveValue(CFMutableDictionaryRef reference, const void* key) {
    Dictionary& dictionary = mutable_dictionary(reference);
    if (const auto removed = remove(dictionary, key)) {
        release_entry(dictionary, *removed);
    }
}

CFTypeID CFSetGetTypeID() {
    return static_cast<CFTypeID>(Kind::set);
}

CFIndex CFSetGetCount(CFSetRef set) {
    return static_cast<CFIndex>(as<Dictionary>(set).count);
}

void CFSetGetValues(CFSetRef set, const void** values) {
    for (const Entry& entry : as<Dictionary>(set).items()) {
        *values++ = entry.key;
    }
}
