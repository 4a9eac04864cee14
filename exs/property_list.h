// Reads values from property lists and writes property lists to files. A value returned from a
// container is borrowed from it; no function takes ownership of an argument.
#pragma once

#include "base/ref.h"

#include <cstdint>
#include <filesystem>
#include <string>

namespace lumo::exs {

/// A new string from NUL-terminated UTF-8. For text that is not UTF-8: nothing, or on a Mac
/// possibly a string with U+FFFD.
Ref<CFStringRef> make_string(const char* text);

/// The UTF-8 text of a string up to its first NUL; empty when it is null or cannot be converted.
std::string to_string(CFStringRef string);

/// The value of `key`, borrowed; null when there is none.
CFTypeRef value_of(CFDictionaryRef dictionary, const char* key);

/// The dictionary, array or string of `key`, borrowed; null when there is none or its type differs.
CFDictionaryRef dictionary_of(CFDictionaryRef dictionary, const char* key);
CFArrayRef array_of(CFDictionaryRef dictionary, const char* key);
CFStringRef string_of(CFDictionaryRef dictionary, const char* key);

/// The integer value of `key`: a real is truncated, a boolean is 1 or 0; `default_value` when there
/// is no value or it has another type.
std::int32_t integer(CFDictionaryRef dictionary, const char* key, std::int32_t default_value);

/// Writes `list` to `path` as a binary property list, replacing any file there. False when it
/// cannot be serialised (then `path` is untouched) or not be written (then the file may be
/// truncated).
bool write_plist(const void* list, const std::filesystem::path& path);

} // namespace lumo::exs
