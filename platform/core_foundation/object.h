// The header that every object begins with: a reference count, a kind, and how the two are handled.
// Objects are plain structures told apart by their kind; there are no virtual functions.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <sys/single_threaded.h>

#include <atomic>
#include <cstdint>
#include <memory>

namespace lumo::platform {

/// What an object is. The number is also its CFTypeID.
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
    url,
    error
};

/// Counts from here on are never changed: the object lives as long as the process.
inline constexpr std::uint32_t immortal = 0x80000000;

/// What every object begins with.
struct Object {
    constexpr explicit Object(Kind object_kind, std::uint8_t object_detail = 0,
                              std::uint32_t count = 1)
        : references{count}, kind{object_kind}, detail{object_detail} {}

    mutable std::atomic<std::uint32_t> references;
    Kind kind;
    std::uint8_t detail; ///< What the kind makes of it: a number's kind, a string's storage, flags.
};

/// Takes one more reference to an object that no other thread has seen yet: a reader that shares
/// values inside the tree it is building needs no locked instruction.
inline void retain_unshared(const Object* object) noexcept {
    const std::uint32_t count = object->references.load(std::memory_order_relaxed);
    if ((count & immortal) == 0) {
        object->references.store(count + 1, std::memory_order_relaxed);
    }
}

/// Takes one more reference. Any thread.
inline void retain(const Object* object) noexcept {
    if (__libc_single_threaded != 0) {
        retain_unshared(object);
    } else if ((object->references.load(std::memory_order_relaxed) & immortal) == 0) {
        object->references.fetch_add(1, std::memory_order_relaxed);
    }
}

/// Gives up one reference; true when it was the last and the object has to be destroyed. Locked
/// instructions, which a process of one thread is spared, would be half the time it takes to
/// release a large property list.
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

/// Frees an object whose last reference was dropped and drops what it holds, at any depth, without
/// recursion.
void destroy(const Object* object) noexcept;

/// Gives up one reference.
inline void release(const Object* object) noexcept {
    if (drop(object)) {
        destroy(object);
    }
}

/// The deleter of smart pointers to objects.
struct Releaser {
    void operator()(const Object* object) const noexcept { release(object); }
};

/// One reference, given up at the end of its life. `release()` hands it to a caller of the C
/// functions.
using Owned = std::unique_ptr<const Object, Releaser>;

/// One more reference to `object`.
inline Owned share(const Object* object) noexcept {
    retain(object);
    return Owned{object};
}

/// One more reference to `object`, which no other thread has seen yet.
inline Owned share_unshared(const Object* object) noexcept {
    retain_unshared(object);
    return Owned{object};
}

/// The object behind a CoreFoundation reference, which must not be null.
inline const Object* object_of(CFTypeRef reference) noexcept {
    return static_cast<const Object*>(reference);
}

/// The object behind a reference as the structure of its kind, which the caller has made sure of.
template <class T>
const T& as(CFTypeRef reference) noexcept {
    return static_cast<const T&>(*object_of(reference));
}

/// Whether two objects have the same kind and value; a whole number equals the real of the same
/// value. Structures of any depth.
bool equal(const Object* a, const Object* b);

/// A hash of the value; the same for equal objects and, within one process, every time.
std::uint32_t hash(const Object* object) noexcept;

} // namespace lumo::platform
