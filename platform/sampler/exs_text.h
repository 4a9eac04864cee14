// Names and paths as EXS24 files hold them.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace lumo::platform {

/// The text in UTF-8: `bytes` as they are when they are UTF-8, else read as MacRoman.
std::string exs_text(std::span<const std::uint8_t> bytes);

/// The path of the file `name` in the folder `directory`. A folder of the old systems
/// ("Volume:folder:") becomes one below /Volumes.
std::string exs_path(std::string_view directory, std::string_view name);

} // namespace lumo::platform
