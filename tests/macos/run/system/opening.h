// open as the Mac's C library calls it.
#pragma once

namespace lumo::macos {

/// open$NOCANCEL with the Mac's flags. It is another library's function for the C library, so
/// interposed. A failure leaves -1 and the Mac's errno.
int open_from_the_c_library(const char* path, int flags, int mode);

} // namespace lumo::macos
