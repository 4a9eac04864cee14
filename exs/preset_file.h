// The bytes of a preset file.
#pragma once

#include <string>
#include <vector>

namespace lumo::exs {

/// All bytes of the file at `path`. A pipe is read to its end, however long its writer takes. Empty
/// when the file cannot be read, is larger than 1 GiB, is a pipe that no writer has opened within
/// three seconds, or a device that gives nothing for three seconds.
std::vector<unsigned char> read_preset(const std::string& path);

} // namespace lumo::exs
