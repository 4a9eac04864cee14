// Property lists as text, so that tests can compare and print them. Uses public headers only.
#pragma once

#include "base/cf_values.h"
#include "platform/core_foundation_vectors.h"
#include "support/plist_io.h"

#include <string>
#include <string_view>

namespace lumo::test {

/// One line with the types and values of everything in a property list, dictionary entries in a
/// fixed order: {"key": [1, real 2.5, "text", true, <00ff>, date 0, uid 7]}. Whole numbers of 128
/// bits are 16 bytes in hexadecimal, "0x... wide", reals of single precision "real32 2.5", units
/// beyond ASCII "\00e9".
std::string described(CFTypeRef list);
/// The same for a property list in the notation of the recorded results.
std::string described(const Json& record);

/// The result of read_and_describe for bytes that are no property list.
inline const std::string refused = "refused";
/// The result of `written` for an object that a property list cannot hold.
inline const std::string not_written = "not written";

/// The description of the property list in `bytes`, or `refused`.
std::string read_and_describe(std::string_view bytes);
/// The same, prefixed with the recognised format: "xml ", "binary " or "openstep ".
std::string read_with_format(std::string_view bytes);

/// A property list read from `bytes`, which must be one.
Ref<CFPropertyListRef> read_list(std::string_view bytes);
/// A property list in its binary form, or `not_written`.
std::string written(CFPropertyListRef list);

/// The number of objects in a binary property list that has fewer than 65,536.
unsigned count_of(const std::string& bytes);

/// An array of the given objects.
Ref<CFTypeRef> array_of(const std::vector<const void*>& items);

} // namespace lumo::test
