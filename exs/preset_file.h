// Reads preset and state files: their bytes, and the property list in them.
#pragma once

#include "base/ref.h"

#include <string>
#include <vector>

namespace lumo::exs {

/// All bytes of the file at `path`. A pipe is read to its end, however slow its writer is. Empty
/// when the file cannot be read, is larger than 1 GiB, is a pipe that no writer opens within three
/// seconds, or a device that returns nothing for three seconds.
std::vector<unsigned char> read_preset(const std::string& path);

/// The dictionary in the file at `path`, which may be a pipe; nothing when the file cannot be read,
/// holds no property list, or its top-level value is not a dictionary.
Ref<CFDictionaryRef> read_dictionary(const std::string& path);

} // namespace lumo::exs
