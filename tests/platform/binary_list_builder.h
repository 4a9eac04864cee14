// Binary property lists put together object by object, faults included.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace lumo::test {

/// `value` in `width` big-endian bytes.
std::string big_endian(std::uint64_t value, std::size_t width);

/// The parts of a binary property list. What is not set is made to fit.
struct BinaryList {
    std::vector<std::string> objects; ///< Marker and contents of each.
    std::size_t offset_width = 2;
    std::size_t ref_width = 1;
    std::uint64_t root = 0;

    /// The file.
    std::string bytes() const;
};

/// So many arrays inside each other.
BinaryList nested_arrays(std::size_t depth);

} // namespace lumo::test
