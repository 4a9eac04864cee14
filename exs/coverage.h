// Which keys and velocities the zones of a layer cover, and how layers lie on top of one another.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace lumo::exs {

/// The cells that a layer covers: a row for each MIDI key, in which bit c stands for the velocities
/// 2c and 2c+1.
using Coverage = std::array<std::uint64_t, 128>;

/// Covers the keys and velocities from `low` to `high`, both included, all in 0 to 127; low ones
/// must not be above high ones.
void cover(Coverage& coverage, int low_key, int high_key, int low_velocity, int high_velocity);

/// How many layers lie on the cells.
struct Stacking {
    std::int32_t covered = 0; ///< cells with one layer or more
    std::int32_t stacked = 0; ///< cells with two layers or more
    std::int32_t highest = 0; ///< most layers on one cell
};

/// Counts the layers on each cell.
class CoverageCounter {
public:
    /// Adds a layer, one to the count of each cell that it covers.
    void add(const Coverage& layer);
    /// The counts of the layers added so far; more may be added after.
    Stacking stacking();

private:
    static constexpr std::size_t block_bits = 4;

    void add_block();

    /// Bit p of a cell's count is the cell's bit in plane p.
    std::vector<Coverage> planes_ = std::vector<Coverage>(block_bits);
    /// Layers that wait to be added together.
    std::array<Coverage, std::size_t{1} << block_bits> block_{};
    std::size_t waiting_ = 0;
};

} // namespace lumo::exs
