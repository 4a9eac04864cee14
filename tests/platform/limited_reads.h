// Stands before the C library's `read` in a test program, as a disk that gives less than was asked
// for: over a network, or cut short while it is read.
#pragma once

#include <cstddef>
#include <limits>

namespace lumo::test {

constexpr std::size_t no_limit = std::numeric_limits<std::size_t>::max();

/// While it lives, one `read` gives at most `at_once` bytes and all together at most `in_all`.
class LimitedReads {
public:
    explicit LimitedReads(std::size_t at_once, std::size_t in_all = no_limit);
    ~LimitedReads();
    LimitedReads(const LimitedReads&) = delete;
    LimitedReads& operator=(const LimitedReads&) = delete;

    /// How many bytes there were room for at most: those given before a `read`, and its size.
    std::size_t room() const;
};

} // namespace lumo::test
