// Whether code under test leaves files open.
#pragma once

#include <fcntl.h>
#include <unistd.h>

namespace lumo::test {

/// The number that the next file to be opened gets: the same again when all others are closed.
inline int next_descriptor() {
    const int descriptor = open("/dev/null", O_RDONLY | O_CLOEXEC);
    close(descriptor);
    return descriptor;
}

} // namespace lumo::test
