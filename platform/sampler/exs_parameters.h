// The parameters of an EXS24 instrument: numbered 16-bit values, of which a file holds any subset.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace lumo::platform {

/// The numbers of the parameters that a sampler state takes over.
enum class ExsParameter : std::uint16_t {
    bend_up = 3,           ///< semitones
    bend_down = 4,         ///< semitones, -1: as bend_up
    polyphony = 5,         ///< voices
    output_volume = 7,     ///< dB
    volume_key_scale = 8,  ///< dB
    filter_resonance = 29, ///< 0 to 1000
    filter_cutoff = 30,    ///< 0 to 1000
    filter_on = 44,
    filter_key_track = 46, ///< 1000: the cutoff follows the keys fully
    lfo_1_rate = 61,       ///< 98: 4.8 Hz, 12 steps an octave, 34: standing still
    lfo_2_rate = 63,
    envelope_2_attack = 76, ///< times: 0 to 127
    envelope_2_decay = 78,
    envelope_2_sustain = 79, ///< levels: 0 to 127
    envelope_2_release = 80,
    amp_sustain = 81,
    amp_attack = 82,      ///< at the highest velocity
    amp_attack_soft = 83, ///< at the lowest velocity
    amp_decay = 84,
    amp_release = 85,
    level_by_velocity = 90, ///< the level at the lowest velocity
    lfo_3_rate = 167,
};

/// One slot of the modulation matrix.
struct ExsModulation {
    int destination = 0; ///< 0 or less: none
    int source = 0; ///< above 0 a MIDI controller, below -1 one of the sampler's own, else none
    int via = -1;   ///< what scales the source; numbered like it
    int low = 0;    ///< amount where `via` is lowest, -1000 to 1000
    int high = 0;   ///< amount where `via` is highest, and the amount without a via
    bool inverted = false; ///< the source is turned round
};

/// All values of one instrument. What a file does not set has the value of a new instrument; what
/// it sets beyond a parameter's range counts as the nearest end of the range.
class ExsParameters {
public:
    static constexpr int slot_count = 20;

    ExsParameters();
    /// Numbers that no known parameter has are passed over.
    void set(std::uint16_t id, std::int16_t value);
    int value(ExsParameter parameter) const { return at(static_cast<std::size_t>(parameter)); }
    /// Slot `slot` (0 to slot_count - 1) of the matrix. A bypassed slot has no destination; an
    /// inverted via comes out as exchanged amounts.
    ExsModulation modulation(int slot) const;

private:
    int at(std::size_t id) const { return values_[id]; }

    std::array<std::int16_t, 1024> values_{};
};

} // namespace lumo::platform
