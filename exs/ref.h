// An owning reference to a CoreFoundation object, released by its destructor. Nothing else in exs/
// calls CFRelease.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <utility>

namespace lumo::exs {

/// Owns one reference to an object of the CoreFoundation type `T`, or nothing. Movable, not
/// copyable.
template <typename T>
class Ref {
public:
    Ref() = default;
    /// Takes ownership of the reference that a Create or Copy function returned; null gives
    /// nothing.
    static Ref adopt(T object) { return Ref(object); }
    /// Retains an object that a Get function returned; null gives nothing.
    static Ref retain(T object) { return Ref(object ? static_cast<T>(CFRetain(object)) : nullptr); }

    Ref(Ref&& other) noexcept : object_(other.release()) {}
    Ref& operator=(Ref&& other) noexcept {
        Ref(std::move(other)).swap(*this);
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
    T release() { return std::exchange(object_, nullptr); }

private:
    explicit Ref(T object) : object_(object) {}
    void swap(Ref& other) noexcept { std::swap(object_, other.object_); }

    T object_ = nullptr;
};

} // namespace lumo::exs
