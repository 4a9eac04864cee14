// Texts, numbers and containers out of property lists, and property lists into files. Values that
// come out of a container are lent by it; nothing here takes ownership of an argument.
#pragma once

#include "ref.h"

#include <cstdint>
#include <filesystem>
#include <string>

namespace lumo::exs {

/// A new string of NUL-terminated text in UTF-8. Of other text: nothing, or on a Mac perhaps a
/// string with U+FFFD in it.
Ref<CFStringRef> make_string(const char* text);

/// The UTF-8 text of a string up to its first NUL; empty when it is null or cannot be converted.
std::string to_string(CFStringRef string);

/// The value for `key`, lent; null when there is none.
CFTypeRef value_of(CFDictionaryRef dictionary, const char* key);

/// The dictionary, array or string for `key`, lent; null when there is none or it is of another
/// type.
CFDictionaryRef dictionary_of(CFDictionaryRef dictionary, const char* key);
CFArrayRef array_of(CFDictionaryRef dictionary, const char* key);
CFStringRef string_of(CFDictionaryRef dictionary, const char* key);

/// The whole number for `key`: a real without its fraction, a boolean as 1 or 0, `fallback` when
/// there is none or it is of another type.
std::int32_t integer(CFDictionaryRef dictionary, const char* key, std::int32_t fallback);

/// Writes `list` to `path` as a binary property list, over what is there. False when it cannot be
/// serialised (then `path` is untouched) or not be written (then the file may be cut short).
bool write_plist(const void* list, const std::filesystem::path& path);

} // namespace lumo::exs
