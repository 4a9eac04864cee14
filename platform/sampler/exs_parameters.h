// The parameters of an EXS24 instrument: 16-bit values with IDs, of which a file has any subset.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace lumo::platform {

/// The IDs of the parameters that a sampler state uses.
enum class ExsParameter : std::uint16_t {
    bend_up = 3,           ///< semitones
    bend_down = 4,         ///< semitones, -1: as bend_up
    polyphony = 5,         ///< voices
    output_volume = 7,     ///< dB
    volume_key_scale = 8,  ///< dB
    filter_resonance = 29, ///< 0 to 1000
    filter_cutoff = 30,    ///< 0 to 1000
    filter_on = 44,
    filter_key_track = 46, ///< 1000: full key tracking
    lfo_1_rate = 61,       ///< 98: 4.8 Hz, 12 steps per octave, 34: off
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
    int destination = 0;   ///< 0 or less: none
    int source = 0;        ///< above 0: MIDI controller, below -1: internal source, else none
    int via = -1;          ///< scales the source; same numbers as `source`
    int low = 0;           ///< amount where `via` is lowest, -1000 to 1000
    int high = 0;          ///< amount where `via` is highest, and the amount without a via
    bool inverted = false; ///< the source is inverted
};

/// All values of one instrument. A parameter that a file does not set has the default of the file
/// format; a value out of range is clamped.
class ExsParameters {
public:
    static constexpr int slot_count = 20;

    ExsParameters();
    /// Sets a parameter; unknown IDs are ignored.
    void set(std::uint16_t id, std::int16_t value);
    int value(ExsParameter parameter) const { return at(static_cast<std::size_t>(parameter)); }
    /// Slot `slot` (0 to slot_count - 1) of the matrix. A bypassed slot has destination 0; an
    /// inverted via is returned as exchanged amounts.
    ExsModulation modulation(int slot) const;

private:
    int at(std::size_t id) const { return values_[id]; }

    std::array<std::int16_t, 1024> values_{};
};

} // namespace lumo::platform
