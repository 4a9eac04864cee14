// The keys and velocities that the zones of a layer cover, and the number of layers that overlap.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace lumo::exs {

/// The cells that a layer covers: one row per MIDI key; bit c is the velocities 2c and 2c+1.
using Coverage = std::array<std::uint64_t, 128>;

/// Marks the keys and velocities from `low` to `high`, both inclusive, as covered. All are 0 to
/// 127, and low values must not exceed high values.
void cover(Coverage& coverage, int low_key, int high_key, int low_velocity, int high_velocity);

/// How the layers overlap.
struct Stacking {
    std::int32_t covered = 0; ///< cells with one layer or more
    std::int32_t stacked = 0; ///< cells with two layers or more
    std::int32_t highest = 0; ///< maximum number of layers on one cell
};

/// Counts the layers on each cell.
class CoverageCounter {
public:
    /// Adds one to the count of each cell that `layer` covers.
    void add(const Coverage& layer);
    /// The statistics of the layers added so far; more layers may be added afterwards.
    Stacking stacking();

private:
    static constexpr std::size_t block_bits = 4;

    void add_block();

    /// Bit p of a cell's count is that cell's bit in plane p.
    std::vector<Coverage> planes_ = std::vector<Coverage>(block_bits);
    /// Layers to be added together, as soon as the block is full.
    std::array<Coverage, std::size_t{1} << block_bits> block_{};
    std::size_t waiting_ = 0;
};

} // namespace lumo::exs
