// An AudioToolbox that does as a test says, linked in place of the real one.
#pragma once

#include "list_values.h"

#include <AudioToolbox/AudioToolbox.h>

#include <functional>
#include <string>
#include <vector>

namespace lumo::test {

/// What the units do, and what was asked of them. Every test begins with a fresh one.
struct FakeAudioToolbox {
    bool has_component = true;
    OSStatus instance_status = 0;
    /// The statuses of initialising the first, the second unit and so on; 0 beyond.
    std::vector<OSStatus> initialise_statuses;
    /// What loading an instrument or a state does, and its status: called with the number of the
    /// load, from 1.
    std::function<OSStatus(int load)> load = [](int) { return 0; };
    OSStatus get_status = 0;
    /// The state that a unit gives.
    Value state = dictionary({});

    AudioComponentDescription description = {};
    std::vector<std::string> calls;
    AUSamplerInstrumentData instrument = {};
    std::string instrument_path;
    Value loaded_state; ///< the last class info that was set
    int units_made = 0;
    int units_alive = 0;
};

/// The one that the functions of AudioToolbox use.
FakeAudioToolbox& audio_toolbox();

} // namespace lumo::test
