// Replaces the C library's `read` in a test program by one that returns fewer bytes than requested,
// as for a file on a network or one that is truncated while it is read.
#pragma once

#include <cstddef>
#include <limits>

namespace lumo::test {

constexpr std::size_t no_limit = std::numeric_limits<std::size_t>::max();

/// While an object exists, one `read` returns at most `at_once` bytes, and all of them together
/// return at most `in_all`.
class LimitedReads {
public:
    explicit LimitedReads(std::size_t at_once, std::size_t in_all = no_limit);
    ~LimitedReads();
    LimitedReads(const LimitedReads&) = delete;
    LimitedReads& operator=(const LimitedReads&) = delete;

    /// The largest total that was requested: the bytes returned before a `read`, plus its size.
    std::size_t room() const;
};

} // namespace lumo::test
