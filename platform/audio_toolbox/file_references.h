// The files that class info refers to.
#pragma once

#include "sampler/exs_load.h"

#include <CoreFoundation/CoreFoundation.h>

namespace lumo::platform {

/// Stores the references of `list`, the top level of class info, in `loaded`: the dictionary of
/// references, with file URLs converted to paths, and the files in ascending byte order of the
/// keys. Entries whose key or value is not a string are omitted. Opens no file.
void read_references(CFDictionaryRef list, LoadedInstrument& loaded);

} // namespace lumo::platform
