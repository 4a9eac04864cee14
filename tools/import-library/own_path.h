// The path of this program.
#pragma once

#include <string>

namespace lumo::library {

/// The path of the running program without links; empty when it cannot be determined. One of two
/// implementations is built.
std::string own_path();

} // namespace lumo::library
