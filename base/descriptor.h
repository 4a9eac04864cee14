// A file descriptor with an owner, and calls that a signal interrupts.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace lumo {

/// Owns a file descriptor, or none (-1). Closing leaves errno alone, so that a function may return
/// in the middle with the errno that its caller is to see.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    Descriptor(Descriptor&& other) noexcept : descriptor_(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    ~Descriptor() {
        if (descriptor_ >= 0) {
            const int error = errno;
            ::close(descriptor_);
            errno = error;
        }
    }

    explicit operator bool() const { return descriptor_ >= 0; }
    int get() const { return descriptor_; }
    /// Gives the descriptor away; the caller closes it.
    int release() { return std::exchange(descriptor_, -1); }

private:
    int descriptor_ = -1;
};

/// Makes a system call again for as long as a signal interrupts it.
template <class Call>
auto uninterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR) {
        result = call();
    }
    return result;
}

} // namespace lumo
