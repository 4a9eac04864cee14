// The states of EXS24 instruments as tables, for tests.
#pragma once

#include "base/ref.h"
#include "support/exs_builder.h"
#include "support/state_paths.h"

#include <CoreFoundation/CoreFoundation.h>

#include <string>
#include <vector>

namespace lumo::test {

/// The state of the instrument in an EXS24 file named "Pad.exs"; null when the file is refused or
/// its instrument has no state.
Ref<CFDictionaryRef> state_of_bytes(const std::string& bytes);
/// The same state as a table; empty when there is none.
StatePaths state_of(const ExsBuilder& builder);

/// The value at `path`; "absent" when there is none.
StateEntry value(const StatePaths& state, const std::string& path);
/// The keys directly below `path`, and those below them with their paths.
std::vector<std::string> keys_below(const StatePaths& state, const std::string& path);

inline StateEntry number(double value) {
    return value;
}
inline const StateEntry absent("absent");
inline const StateEntry yes("true");
inline const StateEntry no("false");

inline const std::string first_zone = "Layers/0/Zones/0";

} // namespace lumo::test
