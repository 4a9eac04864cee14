// An EXS24 instrument as plain records: what of its file a sampler state takes over.
#pragma once

#include "sampler/exs_parameters.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lumo::platform {

/// Keys or velocities from `low` to `high`, both included; nothing when low > high.
struct ExsRange {
    int low = 0;
    int high = 127;

    bool operator==(const ExsRange&) const = default;
};

/// A stretch of keys and velocities that plays one sample.
struct ExsZone {
    std::string name;
    int root_key = 60;
    int fine_tune = 0; ///< cents
    int volume = 0;    ///< dB
    ExsRange keys;
    ExsRange velocities;
    bool pitch_tracking = true;
    bool muted = false;
    bool loop_on = false;
    std::int32_t sample_end = 0; ///< frames
    std::int32_t loop_start = 0; ///< frames from the start of the sample's file
    std::int32_t loop_end = 0;   ///< frames, the first one behind the loop
    std::int32_t group = -1;     ///< position in ExsInstrument::groups; may be out of range
    std::int32_t sample = -1;    ///< position in ExsInstrument::samples; may be out of range
};

/// Zones that are switched on and off together.
struct ExsGroup {
    std::string name;
    int volume = 0; ///< dB
    ExsRange keys;
    ExsRange velocities;
    bool muted = false;
    bool on_release = false;       ///< sounds when a key is let go
    std::optional<int> controller; ///< the MIDI controller that chooses the group
};

/// An audio file, where it was when the instrument was saved.
struct ExsSample {
    std::string path;         ///< POSIX, UTF-8
    std::uint32_t frames = 0; ///< 0: unknown
};

/// All of a file.
struct ExsInstrument {
    std::vector<ExsZone> zones;     ///< in the order of their chunks, as are
    std::vector<ExsGroup> groups;   ///< the groups
    std::vector<ExsSample> samples; ///< and the samples
    ExsParameters parameters;
};

} // namespace lumo::platform
