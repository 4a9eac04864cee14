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

/// Every value below `list` by its path, such as "Instrument/Layers/0/Zones/2/root key". In an
/// array, a dictionary with an "ID" is keyed by it, any other element by its position; each earlier
/// element with the same key appends " again".
StatePaths state_paths(CFPropertyListRef list);

/// One line for each path that only one of the two has, or that has different values. Numbers are
/// compared with a relative tolerance of 1e-6.
std::vector<std::string> state_differences(const StatePaths& expected, const StatePaths& actual);

} // namespace lumo::test
