// The causes of failed imports, and their remedies.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lumo::library {

/// A kind of failure.
struct Cause {
    std::string text;   ///< the part of the error that many failures share
    std::string remedy; ///< empty when none is known
};

/// The start of the error in lines that this program writes itself, for an instrument at which the
/// tool ended. The reason follows.
inline constexpr std::string_view tool_ended = "the tool ended at it: ";

/// The cause of the error of a report line. An unknown error is its own cause, without a remedy.
Cause cause_of(std::string_view error);

/// The number in "... (OSStatus N)"; empty when there is none.
std::string_view status_in(std::string_view error);

} // namespace lumo::library
