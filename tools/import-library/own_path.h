// Where this program lies.
#pragma once

#include <string>

namespace lumo::library {

/// The path of the running program without links; empty when the system does not say. One of two
/// implementations is built.
std::string own_path();

} // namespace lumo::library
