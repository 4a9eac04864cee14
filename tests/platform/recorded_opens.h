// Replaces the C library's `open` in a test program, as a library that redirects samples does: it
// records calls for paths below /recorded, and can open another file instead.
#pragma once

#include <string>
#include <vector>

namespace lumo::test {

/// The paths below /recorded that were opened, in order.
extern std::vector<std::string> asked_for;
/// The file that is opened instead; empty: the path itself.
extern std::string given_instead;

/// Clears both.
void reset_opens();

} // namespace lumo::test
