// Reads numbers from property lists and writes property lists to files. No function takes ownership
// of an argument.
#pragma once

#include "base/cf_values.h"

#include <cstdint>
#include <filesystem>

namespace lumo::exs {

/// The integer value of `key`: a real is truncated, a boolean is 1 or 0; `default_value` when there
/// is no value or it has another type.
std::int32_t integer(CFDictionaryRef dictionary, const char* key, std::int32_t default_value);

/// Writes `list` to `path` as a binary property list, replacing any file there. False when it
/// cannot be serialised (then `path` is untouched) or not be written (then the file may be
/// truncated).
bool write_plist(const void* list, const std::filesystem::path& path);

} // namespace lumo::exs
