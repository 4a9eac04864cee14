// open as the Mac's C library calls it.
#pragma once

namespace lumo::macos {

/// open$NOCANCEL with the Mac's flags. The C library imports it from another library, so it is
/// interposed. Returns -1 on failure and sets the Mac's errno.
int open_from_the_c_library(const char* path, int flags, int mode);

} // namespace lumo::macos
