// A property list as a flat table, so that tests can name single values and compare whole states.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <map>
#include <string>
#include <variant>
#include <vector>

namespace lumo::test {

/// Numbers of any kind are doubles; booleans are "true" and "false", data hexadecimal,
/// empty containers "{}" and "[]".
using StateEntry = std::variant<double, std::string>;
using StatePaths = std::map<std::string, StateEntry>;

/// Every value below `list` by its path, such as "Instrument/Layers/0/Zones/2/root key". An array's
/// dictionaries go by their "ID" (and " again" behind it for each one before with the same), all
/// else by its position.
StatePaths state_paths(CFPropertyListRef list);

/// One line for each path that is in one of the two only or has another value; numbers may differ
/// by a part in a million.
std::vector<std::string> state_differences(const StatePaths& expected, const StatePaths& actual);

} // namespace lumo::test
