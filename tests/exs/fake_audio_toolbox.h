// An AudioToolbox controlled by a test, linked in place of the real one.
#pragma once

#include "list_values.h"

#include <AudioToolbox/AudioToolbox.h>

#include <functional>
#include <string>
#include <vector>

namespace lumo::test {

/// The behaviour of the units, and a record of the calls. Every test begins with a new one.
struct FakeAudioToolbox {
    bool has_component = true;
    OSStatus instance_status = 0;
    /// The statuses that initialising the first, the second unit and so on returns; 0 for the rest.
    std::vector<OSStatus> initialise_statuses;
    /// Called when an instrument or a state is loaded, with the number of the load, from 1; returns
    /// the load's status.
    std::function<OSStatus(int load)> load = [](int) { return 0; };
    OSStatus get_status = 0;
    /// The state that is read from a unit.
    Value state = dictionary({});

    AudioComponentDescription description = {};
    std::vector<std::string> calls;
    AUSamplerInstrumentData instrument = {};
    std::string instrument_path;
    Value loaded_state; ///< the last class info that was set
    int units_made = 0;
    int units_alive = 0;
};

/// The instance that the functions of AudioToolbox use.
FakeAudioToolbox& audio_toolbox();

} // namespace lumo::test
