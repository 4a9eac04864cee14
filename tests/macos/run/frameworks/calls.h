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

/// Opens with the function `how` ("open", "fopen$DARWIN_EXTSN", ...), flags and mode as a Mac has
/// them. A failure leaves -1 and the Mac's errno.
int open_with(const std::string& how, const char* path, int flags, int mode);

/// Looks for the file with the function `how` ("stat", "access", ...; none when empty), as a
/// sampler does before it opens. A failure leaves the Mac's errno; an unknown function ends the
/// process.
bool look_with(const std::string& how, const char* path);

} // namespace lumo::macos
