// No EXS24 instrument is supported yet.
#include "sampler/exs_load.h"

#include <AudioToolbox/AudioToolbox.h>

namespace lumo::platform {

OSStatus load_exs(const std::string& /*path*/, LoadedInstrument& /*loaded*/) {
    return kAudioUnitErr_FormatNotSupported;
}

} // namespace lumo::platform
