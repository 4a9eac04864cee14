// An EXS24 instrument as plain records: the parts of its file that a sampler state uses.
#pragma once

#include "sampler/exs_parameters.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lumo::platform {

/// Keys or velocities from `low` to `high`, both inclusive; empty when low > high.
struct ExsRange {
    int low = 0;
    int high = 127;

    bool operator==(const ExsRange&) const = default;
};

/// A range of keys and velocities that plays one sample.
struct ExsZone {
    std::string name;
    int root_key = 60;
    int coarse_tune = 0; ///< semitones
    int fine_tune = 0;   ///< cents
    int volume = 0;      ///< dB
    int pan = 0;         ///< percent, -100 (left) to 100
    ExsRange keys;
    ExsRange velocities;
    bool pitch_tracking = true;
    bool muted = false;
    bool loop_on = false;
    std::int32_t sample_start = 0; ///< first frame that is played, from the start of the file
    std::int32_t sample_end = 0;   ///< end frame, exclusive; 0 or less: the file's end
    std::int32_t loop_start = 0;   ///< first frame of the loop
    std::int32_t loop_end = 0;     ///< end frame of the loop, exclusive
    std::int32_t group = -1;       ///< index in ExsInstrument::groups; may be out of range
    std::int32_t sample = -1;      ///< index in ExsInstrument::samples; may be out of range
};

/// The MIDI controller that selects a group, and the range of values that does.
struct ExsSelection {
    int controller = 0;
    ExsRange values;

    bool operator==(const ExsSelection&) const = default;
};

/// Zones with common settings.
struct ExsGroup {
    std::string name = {};
    int volume = 0; ///< dB
    int pan = 0;    ///< percent, -100 (left) to 100
    ExsRange keys = {};
    ExsRange velocities = {};
    bool muted = false;
    bool on_release = false;                         ///< sounds when a key is released
    std::optional<std::uint32_t> release_decay = {}; ///< ms; nothing: the instrument's decay
    std::int32_t attack_offset = 0;                  ///< ms, added to the instrument's attack
    std::optional<ExsSelection> selection = {};      ///< nothing: no controller selects the group
};

/// An audio file, by its path when the instrument was saved.
struct ExsSample {
    std::string path;         ///< POSIX, UTF-8
    std::uint32_t frames = 0; ///< 0: unknown
};

/// The contents of a file.
struct ExsInstrument {
    std::vector<ExsZone> zones;     ///< in the order of their chunks
    std::vector<ExsGroup> groups;   ///< in the order of their chunks
    std::vector<ExsSample> samples; ///< in the order of their chunks
    ExsParameters parameters;
};

} // namespace lumo::platform
