// Numbers in decimal notation.
#pragma once

#include <string_view>

namespace lumo::platform {

/// The double nearest to a decimal: digits with at most one point among them, then perhaps an
/// exponent ("e" or "E", perhaps a sign, digits). Infinity or zero when no double comes near. The
/// locale does not matter.
double nearest_double(std::string_view decimal);

} // namespace lumo::platform
