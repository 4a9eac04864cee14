// The files that class info refers to.
#pragma once

#include "sampler/exs_load.h"

#include <CoreFoundation/CoreFoundation.h>

namespace lumo::platform {

/// Takes the references of `list`, the top level of class info, over into `loaded`: its references,
/// file URLs as paths, and its files in ascending byte order of the keys. What is no text is left
/// out. Opens no file.
void read_references(CFDictionaryRef list, LoadedInstrument& loaded);

} // namespace lumo::platform
