// An owning file descriptor, and a retry for system calls that a signal interrupts.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace lumo {

/// Owns a file descriptor, or none (-1). The destructor preserves errno, so a function can return
/// early with the errno of the call that failed.
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
    /// Releases ownership; the caller closes the descriptor.
    int release() { return std::exchange(descriptor_, -1); }

private:
    int descriptor_ = -1;
};

/// Repeats a system call as long as it fails with EINTR; returns its last result.
template <class Call>
auto uninterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR) {
        result = call();
    }
    return result;
}

} // namespace lumo
