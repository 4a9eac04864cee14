// Detects whether code under test leaves files open.
#pragma once

#include <fcntl.h>
#include <unistd.h>

namespace lumo::test {

/// The descriptor that the next opened file will have: unchanged when all files opened meanwhile
/// have been closed.
inline int next_descriptor() {
    const int descriptor = open("/dev/null", O_RDONLY | O_CLOEXEC);
    close(descriptor);
    return descriptor;
}

} // namespace lumo::test
