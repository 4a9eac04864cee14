// Numbers in decimal notation.
#pragma once

#include <string_view>

namespace lumo::platform {

/// The double nearest to a decimal: digits with at most one point, then an optional exponent ("e"
/// or "E", an optional sign, digits). Infinity or zero when out of range. Independent of the
/// locale.
double nearest_double(std::string_view decimal);

} // namespace lumo::platform
