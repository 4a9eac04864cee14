// libsndfile, loaded when a sample needs it. It depends on seven other libraries; to load them all
// would take a third of the start of every run.
#pragma once

#include <sndfile.h>

namespace lumo::platform {

/// The functions of libsndfile that are used.
struct SoundFileLibrary {
    decltype(&sf_open_virtual) open_virtual;
    decltype(&sf_close) close;
};

/// The library, which stays loaded; null when it is not installed.
const SoundFileLibrary* sound_file_library();

} // namespace lumo::platform
