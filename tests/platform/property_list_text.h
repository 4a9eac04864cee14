// Property lists as text, so that tests can compare and show them. Public headers only.
#pragma once

#include "platform/core_foundation_vectors.h"

#include <string>
#include <string_view>

namespace lumo::test {

/// One line that tells the kinds and values of everything in a property list, dictionary entries in
/// a fixed order: {"key": [1, real 2.5, "text", true, <00ff>, date 0, uid 7]}. Whole numbers of 128
/// bits read "1 wide", reals of single precision "real32 2.5", units beyond ASCII "\00e9".
std::string described(CFTypeRef list);
/// The same of a property list as the recorded results tell it.
std::string described(const Json& record);

/// What read_and_describe gives for bytes that are no property list.
inline const std::string refused = "refused: \"NSCocoaErrorDomain\" 3840";
/// What written gives for an object that a property list cannot hold.
inline const std::string not_written = "refused: \"NSCocoaErrorDomain\" 3851";

/// What reading `bytes` gives, described, or "refused: domain code".
std::string read_and_describe(std::string_view bytes);
/// The same, with the format that was recognised in front: "xml ", "binary " or "openstep ".
std::string read_with_format(std::string_view bytes);

/// A property list read from `bytes`, which must be one.
Holder<CFPropertyListRef> read_list(std::string_view bytes);
/// A property list in its binary form, or "refused: domain code".
std::string written(CFPropertyListRef list);

/// An array of the given objects.
Holder<CFTypeRef> array_of(const std::vector<const void*>& items);

} // namespace lumo::test
