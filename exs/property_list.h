// Reads numbers from property lists and writes property lists to files. No function takes ownership
// of an argument.
#pragma once

#include "base/cf_values.h"

#include <fcntl.h>

#include <cstdint>
#include <filesystem>

namespace lumo::exs {

/// The integer value of `key`: a real is truncated, a boolean is 1 or 0; `default_value` when there
/// is no value or it has another type.
std::int32_t integer(CFDictionaryRef dictionary, const Key& key, std::int32_t default_value);

/// Writes `list` to `path` as a binary property list. A file there is replaced, or kept when
/// `existing` is O_EXCL. False, with errno set, when the list cannot be serialised (EINVAL; `path`
/// is untouched), when a file is kept (EEXIST), or when it cannot be written (the file may be
/// truncated).
bool write_plist(const void* list, const std::filesystem::path& path, int existing = O_TRUNC);

} // namespace lumo::exs
