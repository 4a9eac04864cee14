// Binary property lists assembled object by object, valid or with deliberate faults.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace lumo::test {

/// `value` as `width` big-endian bytes.
std::string big_endian(std::uint64_t value, std::size_t width);

/// The parts of a binary property list. Parts that are not set are derived from the others.
struct BinaryList {
    std::vector<std::string> objects; ///< marker and contents of each
    std::size_t offset_width = 2;
    std::size_t ref_width = 1;
    std::uint64_t root = 0;

    /// The bytes of the file.
    std::string bytes() const;
};

/// `depth` arrays, each inside the one before.
BinaryList nested_arrays(std::size_t depth);

} // namespace lumo::test
