// An owning reference to a CoreFoundation object; only here does the platform's sampler call
// CFRelease.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <utility>

namespace lumo::platform {

/// Owns one reference to a CoreFoundation object, or nothing.
template <class T>
class Ref {
public:
    Ref() = default;
    /// Takes ownership of the reference that a Create or Copy function returned.
    static Ref adopt(T created) { return Ref(created); }
    /// Retains an object that a Get function returned.
    static Ref retain(T borrowed) {
        if (borrowed) {
            CFRetain(borrowed);
        }
        return Ref(borrowed);
    }
    ~Ref() {
        if (object_) {
            CFRelease(object_);
        }
    }
    Ref(const Ref& other) : Ref(retain(other.object_)) {}
    Ref(Ref&& other) noexcept : object_(other.release()) {}
    Ref& operator=(Ref other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }

    T get() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }
    /// Releases ownership; the caller calls CFRelease.
    [[nodiscard]] T release() { return std::exchange(object_, nullptr); }

private:
    explicit Ref(T object) : object_(object) {}

    T object_ = nullptr;
};

} // namespace lumo::platform
