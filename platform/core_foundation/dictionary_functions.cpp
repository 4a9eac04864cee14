// The C functions of dictionaries and sets.
#include "core_foundation/dictionary.h"

#include <cstddef>
#include <utility>

using namespace lumo::platform;

namespace {

/// Adds an entry and retains it. If an equal key is present, changes nothing and returns the
/// present entry.
Entry* add(Dictionary& dictionary, const void* key, const void* value) {
    Entry* present = insert(dictionary, {object_of(key), object_of(value)});
    if (present == nullptr) {
        retain(object_of(key));
        retain(object_of(value));
    }
    return present;
}

CFMutableDictionaryRef make_mutable(std::size_t room) {
    Dictionary* dictionary = allocate_dictionary(Kind::dictionary, room);
    dictionary->is_mutable = true;
    return reinterpret_cast<CFMutableDictionaryRef>(dictionary);
}

/// A dictionary that may be changed; an immutable one stops the process, as on a Mac.
Dictionary& mutable_dictionary(CFMutableDictionaryRef reference) {
    auto& dictionary = const_cast<Dictionary&>(as<Dictionary>(reference));
    if (!dictionary.is_mutable) {
        __builtin_trap();
    }
    return dictionary;
}

} // namespace

const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks = {0,       nullptr, nullptr,
                                                                nullptr, CFEqual, CFHash};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks = {0, nullptr, nullptr, nullptr,
                                                                    CFEqual};

CFTypeID CFDictionaryGetTypeID() {
    return static_cast<CFTypeID>(Kind::dictionary);
}

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef, const void** keys, const void** values,
                                   CFIndex count, const CFDictionaryKeyCallBacks* key_callbacks,
                                   const CFDictionaryValueCallBacks* value_callbacks) {
    require_objects(key_callbacks, kCFTypeDictionaryKeyCallBacks);
    require_objects(value_callbacks, kCFTypeDictionaryValueCallBacks);
    Dictionary* dictionary = allocate_dictionary(Kind::dictionary, static_cast<std::size_t>(count));
    for (CFIndex i = 0; i < count; ++i) {
        add(*dictionary, keys[i], values[i]);
    }
    return reinterpret_cast<CFDictionaryRef>(dictionary);
}

CFMutableDictionaryRef
CFDictionaryCreateMutable(CFAllocatorRef, CFIndex, const CFDictionaryKeyCallBacks* key_callbacks,
                          const CFDictionaryValueCallBacks* value_callbacks) {
    require_objects(key_callbacks, kCFTypeDictionaryKeyCallBacks);
    require_objects(value_callbacks, kCFTypeDictionaryValueCallBacks);
    return make_mutable(0);
}

CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef, CFIndex,
                                                     CFDictionaryRef reference) {
    const auto& source = as<Dictionary>(reference);
    const CFMutableDictionaryRef copy = make_mutable(source.count + 1);
    for (const Entry& entry : source.items()) {
        add(mutable_dictionary(copy), entry.key, entry.value);
    }
    return copy;
}

CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary) {
    return static_cast<CFIndex>(as<Dictionary>(dictionary).count);
}

const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key) {
    const Entry* entry = find(as<Dictionary>(dictionary), object_of(key));
    return entry == nullptr ? nullptr : entry->value;
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

void CFDictionarySetValue(CFMutableDictionaryRef reference, const void* key, const void* value) {
    Entry* present = add(mutable_dictionary(reference), key, value);
    if (present != nullptr) {
        const Owned old_key{std::exchange(present->key, share(object_of(key)).release())};
        const Owned old_value{std::exchange(present->value, share(object_of(value)).release())};
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
