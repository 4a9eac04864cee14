// The bytes of a preset file.
#pragma once

#include <string>
#include <vector>

namespace lumo::exs {

/// All bytes of the file at `path`, a pipe's too. Empty when it cannot be read, is larger than
/// 1 GiB, or is a pipe on which nothing comes for three seconds.
std::vector<unsigned char> read_preset(const std::string& path);

} // namespace lumo::exs
