// One reference to a CoreFoundation object, dropped when its Ref goes. Nothing else in
// exs/ says CFRelease.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <utility>

namespace lumo::exs {

/// Owns one reference to an object of the CoreFoundation type `T`, or nothing. Moves, never copies.
template <typename T>
class Ref {
public:
    Ref() = default;
    /// Takes over the reference that a Create or Copy function handed out; null gives nothing.
    static Ref adopt(T object) { return Ref(object); }
    /// Adds a reference to what a Get function lent; null gives nothing.
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

    /// The object, lent for as long as this Ref holds it.
    T get() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }
    /// The object with its reference, which the caller releases.
    T release() { return std::exchange(object_, nullptr); }

private:
    explicit Ref(T object) : object_(object) {}
    void swap(Ref& other) noexcept { std::swap(object_, other.object_); }

    T object_ = nullptr;
};

} // namespace lumo::exs
