// Streams of the C library. They are those of this system, but are opened by calling open as on a
// Mac.
#include "system/opening.h"
#include "system/system.h"

#include <stdio.h>

#include <cstring>

namespace lumo::macos {
namespace {

FILE* open_stream(const char* path, const char* mode) {
    int flags = mode[0] == 'r' ? 0 : mode[0] == 'w' ? 0x201 | 0x400 : 0x201 | 0x8;
    if (std::strchr(mode, '+')) {
        flags = (flags & ~3) | 2;
    }
    flags |= (std::strchr(mode, 'x') ? 0x800 : 0) | (std::strchr(mode, 'e') ? 0x1000000 : 0);
    const int file = open_from_the_c_library(path, flags, 0666);
    FILE* stream = file < 0 ? nullptr : ::fdopen(file, mode);
    return file < 0 ? nullptr : done(stream);
}

FILE* mac_fopen(const char* path, const char* mode) {
    return open_stream(path, mode);
}

FILE* mac_fopen_extended(const char* path, const char* mode) {
    return open_stream(path, mode);
}

FILE* mac_fdopen(int file, const char* mode) {
    return done(::fdopen(file, mode));
}

size_t mac_fwrite(const void* bytes, size_t size, size_t count, FILE* stream) {
    const size_t written = ::fwrite(bytes, size, count, stream);
    if (written < count) {
        mac_errno() = mac_error(errno);
    }
    return written;
}

int mac_fflush(FILE* stream) {
    return done(::fflush(stream));
}

int mac_fclose(FILE* stream) {
    return done(::fclose(stream));
}

const Name names[] = {
    row("_fopen", mac_fopen),   row("_fopen$DARWIN_EXTSN", mac_fopen_extended),
    row("_fdopen", mac_fdopen), row("_fwrite", mac_fwrite),
    row("_fflush", mac_fflush), row("_fclose", mac_fclose),
};

} // namespace

std::span<const Name> stream_names() {
    return names;
}

} // namespace lumo::macos
