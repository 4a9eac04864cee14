// Why instruments fail, and what can be done about it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lumo::library {

/// A kind of failure.
struct Cause {
    std::string text;   ///< what many failures have in common
    std::string remedy; ///< what to do about it; empty when nothing is known
};

/// The error of a line that the program writes itself, for an instrument at which the tool ended;
/// the reason follows.
inline constexpr std::string_view tool_ended = "the tool ended at it: ";

/// The cause behind the error of a report line. One that is not known is its own cause.
Cause cause_of(std::string_view error);

/// The number in "... (OSStatus N)"; empty when there is none.
std::string_view status_in(std::string_view error);

} // namespace lumo::library
