// A file descriptor with an owner.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace lumo::platform {

/// Owns a file descriptor, or none (-1). Closing leaves errno alone, so that a function may return
/// in the middle with the errno that its caller is to see.
class UniqueFd {
public:
    UniqueFd() = default;
    explicit UniqueFd(int fd) : fd_(fd) {}
    UniqueFd(UniqueFd&& other) noexcept : fd_(other.release()) {}
    UniqueFd& operator=(UniqueFd&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }
    ~UniqueFd() {
        if (fd_ >= 0) {
            const int error = errno;
            ::close(fd_);
            errno = error;
        }
    }

    explicit operator bool() const { return fd_ >= 0; }
    int get() const { return fd_; }
    /// Gives the descriptor away; the caller closes it.
    int release() { return std::exchange(fd_, -1); }

private:
    int fd_ = -1;
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

} // namespace lumo::platform
