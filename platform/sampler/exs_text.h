// Names and paths in EXS24 files.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace lumo::platform {

/// The text in UTF-8: `bytes` unchanged if they are UTF-8, without an incomplete character at the
/// end; else decoded as MacRoman.
std::string exs_text(std::span<const std::uint8_t> bytes);

/// The path of the file `name` in the folder `directory`. A folder in classic notation
/// ("Volume:folder:") becomes one in /Volumes.
std::string exs_path(std::string_view directory, std::string_view name);

} // namespace lumo::platform
