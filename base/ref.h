// An owning reference to a CoreFoundation object, released by its destructor.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <concepts>
#include <utility>

namespace lumo {

/// Owns one reference to an object of the CoreFoundation type `T`, or nothing. A copy retains the
/// object. Created by adopt() and retain().
template <class T>
class Ref {
public:
    Ref() = default;
    Ref(const Ref& other) : Ref(other.object_) {
        if (object_) {
            CFRetain(object_);
        }
    }
    Ref(Ref&& other) noexcept : object_(other.release()) {}
    /// Takes the reference of a more specific type, such as that of a CFStringRef for a CFTypeRef.
    template <std::convertible_to<T> Other>
    Ref(Ref<Other> other) noexcept : object_(other.release()) {}
    Ref& operator=(Ref other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Ref() {
        if (object_) {
            CFRelease(object_);
        }
    }

    /// The object, borrowed: valid as long as this Ref owns it.
    T get() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }
    /// Releases ownership; the caller calls CFRelease.
    [[nodiscard]] T release() { return std::exchange(object_, nullptr); }

private:
    explicit Ref(T object) : object_(object) {}
    template <class Object>
    friend Ref<Object> adopt(Object created);

    T object_ = nullptr;
};

/// Takes ownership of the reference that a Create or Copy function returned; empty for null.
template <class T>
Ref<T> adopt(T created) {
    return Ref<T>(created);
}

/// Retains an object that a Get function returned; empty for null.
template <class T>
Ref<T> retain(T borrowed) {
    if (borrowed) {
        CFRetain(borrowed);
    }
    return adopt(borrowed);
}

} // namespace lumo
