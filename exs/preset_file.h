// Preset and state files: their bytes, and the property list in them.
#pragma once

#include "ref.h"

#include <string>
#include <vector>

namespace lumo::exs {

/// All bytes of the file at `path`. A pipe is read to its end, however long its writer takes. Empty
/// when the file cannot be read, is larger than 1 GiB, is a pipe that no writer has opened within
/// three seconds, or a device that gives nothing for three seconds.
std::vector<unsigned char> read_preset(const std::string& path);

/// The dictionary in the file at `path`, which may be a pipe too; nothing when it cannot be read or
/// holds no property list or another kind of value.
Ref<CFPropertyListRef> read_dictionary(const std::string& path);

} // namespace lumo::exs
