// Calls of libSystem as the system's frameworks make them: through the interpose sections.
#pragma once

#include <string>

namespace lumo::macos {

/// The address that a call of `name` reaches; ends the process when there is no such function.
void* system_address(const std::string& name);

template <class Function>
Function* system_call(const std::string& name) {
    return reinterpret_cast<Function*>(system_address(name));
}

/// Opens with the function `how` ("open", "fopen$DARWIN_EXTSN", ...); flags and mode have the Mac's
/// values. Returns -1 on failure and sets the Mac's errno. Ends the process for an unknown
/// function.
int open_with(const std::string& how, const char* path, int flags, int mode);

/// Checks with the function `how` ("stat", "access", ...) whether the file exists, as a sampler
/// does before it opens it; true without a check when `how` is empty. Sets the Mac's errno on
/// failure. Ends the process for an unknown function.
bool look_with(const std::string& how, const char* path);

} // namespace lumo::macos
