// The header of every object: a reference count and a kind, with the functions that use them.
// Objects are plain structures distinguished by their kind; there are no virtual functions.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <sys/single_threaded.h>

#include <atomic>
#include <cstdint>
#include <memory>

namespace lumo::platform {

/// The kind of an object. The value is also its CFTypeID.
enum class Kind : std::uint8_t {
    null = 1,
    boolean,
    number,
    string,
    data,
    date,
    uid,
    array,
    dictionary,
    set,
    url
};

/// Reference counts from this value on are never changed: the object exists as long as the process.
inline constexpr std::uint32_t immortal = 0x80000000;

/// The header of every object.
struct Object {
    constexpr explicit Object(Kind object_kind, std::uint8_t object_detail = 0,
                              std::uint32_t count = 1)
        : references{count}, kind{object_kind}, detail{object_detail} {}

    mutable std::atomic<std::uint32_t> references;
    Kind kind;
    std::uint8_t detail; ///< Depends on the kind: a number's kind, a string's storage.
};

/// Adds a reference to an object that no other thread can see yet, so that a reader which shares
/// values inside the tree it builds needs no atomic instruction.
inline void retain_unshared(const Object* object) noexcept {
    const std::uint32_t count = object->references.load(std::memory_order_relaxed);
    if ((count & immortal) == 0) {
        object->references.store(count + 1, std::memory_order_relaxed);
    }
}

/// Adds a reference. Thread-safe.
inline void retain(const Object* object) noexcept {
    if (__libc_single_threaded != 0) {
        retain_unshared(object);
    } else if ((object->references.load(std::memory_order_relaxed) & immortal) == 0) {
        object->references.fetch_add(1, std::memory_order_relaxed);
    }
}

/// Removes a reference; true when it was the last, and the object must be destroyed. Uses no atomic
/// instructions in a single-threaded process: they would make up half of the time of releasing a
/// large property list.
inline bool drop(const Object* object) noexcept {
    const std::uint32_t count = object->references.load(std::memory_order_acquire);
    if ((count & immortal) != 0) {
        return false;
    }
    if (__libc_single_threaded != 0 && count != 1) {
        object->references.store(count - 1, std::memory_order_relaxed);
        return false;
    }
    return count == 1 || object->references.fetch_sub(1, std::memory_order_acq_rel) == 1;
}

/// Frees an object whose last reference was removed and releases its children, at any depth,
/// without recursion.
void destroy(const Object* object) noexcept;

/// Removes a reference, and destroys the object if it was the last.
inline void release(const Object* object) noexcept {
    if (drop(object)) {
        destroy(object);
    }
}

/// The deleter of smart pointers to objects.
struct Releaser {
    void operator()(const Object* object) const noexcept { release(object); }
};

/// Owns one reference, released by the destructor. `release()` passes it to a caller of the C
/// functions.
using Owned = std::unique_ptr<const Object, Releaser>;

/// A new reference to `object`.
inline Owned share(const Object* object) noexcept {
    retain(object);
    return Owned{object};
}

/// A new reference to `object`, which no other thread can see yet.
inline Owned share_unshared(const Object* object) noexcept {
    retain_unshared(object);
    return Owned{object};
}

/// The object of a CoreFoundation reference, which must not be null.
inline const Object* object_of(CFTypeRef reference) noexcept {
    return static_cast<const Object*>(reference);
}

/// The object of a reference as the structure of its kind, which the caller has checked.
template <class T>
const T& as(CFTypeRef reference) noexcept {
    return static_cast<const T&>(*object_of(reference));
}

/// Whether two objects have the same kind and value; an integer equals the real of the same value.
/// Structures may have any depth.
bool equal(const Object* a, const Object* b);

/// A hash of the value; equal for equal objects and constant within a process.
std::uint32_t hash(const Object* object) noexcept;

} // namespace lumo::platform
