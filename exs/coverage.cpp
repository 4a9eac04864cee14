// Counting layer by layer would visit each of the 8192 cells (128 keys, 64 velocity pairs) of each
// layer. Instead, the counts are stored as bit planes: plane p holds bit p of the counts of all
// cells, and adders made of bitwise operations count 64 cells at a time. Sixteen layers are added
// together, so the higher planes take one carry instead of sixteen.
#include "coverage.h"

#include <algorithm>
#include <bit>

namespace lumo::exs {
namespace {

/// Adds the bits `a` and `b` to the bits of `sum`; returns the carries.
std::uint64_t add_bits(std::uint64_t& sum, std::uint64_t a, std::uint64_t b) {
    const std::uint64_t half = sum ^ a;
    const std::uint64_t carry = (sum & a) | (half & b);
    sum = half ^ b;
    return carry;
}

/// Adds one row of 2^bits layers to the binary digits of the row's counts; returns the carries into
/// the next higher digit.
template <std::size_t bits>
std::uint64_t add_row(std::uint64_t* digits, const Coverage* layers, std::size_t row) {
    if constexpr (bits == 0) {
        return layers[0][row];
    } else {
        constexpr std::size_t half = std::size_t{1} << (bits - 1);
        const std::uint64_t a = add_row<bits - 1>(digits, layers, row);
        const std::uint64_t b = add_row<bits - 1>(digits, layers + half, row);
        return add_bits(digits[bits - 1], a, b);
    }
}

/// Adds `carry` to a plane; on return `carry` is the carry into the next plane.
void add_carry(Coverage& plane, Coverage& carry) {
    for (std::size_t row = 0; row < plane.size(); ++row) {
        const std::uint64_t sum = plane[row] ^ carry[row];
        carry[row] &= plane[row];
        plane[row] = sum;
    }
}

/// Reduces `cells` to those set in the plane, and returns true, if there are any; else leaves them
/// unchanged.
bool narrow(Coverage& cells, const Coverage& plane) {
    Coverage common;
    std::uint64_t any = 0;
    for (std::size_t row = 0; row < plane.size(); ++row) {
        common[row] = cells[row] & plane[row];
        any |= common[row];
    }
    if (any != 0) {
        cells = common;
    }
    return any != 0;
}

std::int32_t highest_count(const std::vector<Coverage>& planes) {
    Coverage cells;
    cells.fill(~std::uint64_t{0});
    std::uint32_t highest = 0;
    for (std::size_t p = planes.size(); p-- > 0;) {
        highest |= narrow(cells, planes[p]) ? std::uint32_t{1} << p : 0;
    }
    return static_cast<std::int32_t>(highest);
}

} // namespace

void cover(Coverage& coverage, int low_key, int high_key, int low_velocity, int high_velocity) {
    const std::uint64_t all = ~std::uint64_t{0};
    const std::uint64_t bits = (all << (low_velocity / 2)) & (all >> (63 - high_velocity / 2));
    for (int key = low_key; key <= high_key; ++key) {
        coverage[static_cast<std::size_t>(key)] |= bits;
    }
}

void CoverageCounter::add(const Coverage& layer) {
    block_[waiting_] = layer;
    if (++waiting_ == block_.size()) {
        add_block();
    }
}

void CoverageCounter::add_block() {
    Coverage carry;
    for (std::size_t row = 0; row < carry.size(); ++row) {
        std::array<std::uint64_t, block_bits> digits;
        for (std::size_t p = 0; p < block_bits; ++p) {
            digits[p] = planes_[p][row];
        }
        carry[row] = add_row<block_bits>(digits.data(), block_.data(), row);
        for (std::size_t p = 0; p < block_bits; ++p) {
            planes_[p][row] = digits[p];
        }
    }
    for (std::size_t p = block_bits; carry != Coverage{}; ++p) {
        if (p == planes_.size()) {
            planes_.emplace_back();
        }
        add_carry(planes_[p], carry);
    }
    waiting_ = 0;
}

Stacking CoverageCounter::stacking() {
    if (waiting_ > 0) {
        std::fill(block_.begin() + static_cast<std::ptrdiff_t>(waiting_), block_.end(), Coverage{});
        add_block();
    }
    Stacking result;
    for (std::size_t row = 0; row < Coverage{}.size(); ++row) {
        std::uint64_t several = 0;
        for (std::size_t p = 1; p < planes_.size(); ++p) {
            several |= planes_[p][row];
        }
        result.covered += std::popcount(several | planes_[0][row]);
        result.stacked += std::popcount(several);
    }
    result.highest = highest_count(planes_);
    return result;
}

} // namespace lumo::exs
