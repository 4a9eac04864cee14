// Stands before the C library's `open` in a test program, as a library that redirects samples does:
// it notes who asks for a path below /recorded, and may give another file.
#pragma once

#include <string>
#include <vector>

namespace lumo::test {

/// The paths below /recorded that were opened, in order.
extern std::vector<std::string> asked_for;
/// The file that is opened instead; empty: none.
extern std::string given_instead;

/// Forgets both.
void reset_opens();

} // namespace lumo::test
