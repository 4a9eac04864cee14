// The functions that open a file and return a descriptor.
#include "system/opening.h"

#include "loader/image.h"
#include "system/flags.h"
#include "system/system.h"
#include "system/variadic.h"

#include <fcntl.h>

#include <cstdarg>

namespace lumo::macos {
namespace {

// The mode if the Mac program passed one; otherwise an undefined value, which is not used.
#define MODE_ARGUMENT(last)                                                                        \
    va_list arguments;                                                                             \
    va_start(arguments, last);                                                                     \
    take_mac_arguments(arguments);                                                                 \
    const int mode = va_arg(arguments, int);                                                       \
    va_end(arguments);

int open_at(int folder, const char* path, int flags, int mode) {
    return done(::openat(folder_of(folder), path, open_flags(flags), mode));
}

int mac_open(const char* path, int flags, ...) {
    MODE_ARGUMENT(flags)
    return open_at(mac_at_fdcwd, path, flags, mode);
}

int mac_open_nocancel(const char* path, int flags, ...) {
    MODE_ARGUMENT(flags)
    return open_at(mac_at_fdcwd, path, flags, mode);
}

int mac_openat(int folder, const char* path, int flags, ...) {
    MODE_ARGUMENT(flags)
    return open_at(folder, path, flags, mode);
}

int mac_openat_nocancel(int folder, const char* path, int flags, ...) {
    MODE_ARGUMENT(flags)
    return open_at(folder, path, flags, mode);
}

int mac_open_dprotected_np(const char* path, int flags, int, int how, ...) {
    MODE_ARGUMENT(how)
    return open_at(mac_at_fdcwd, path, flags, mode);
}

int mac_openat_dprotected_np(int folder, const char* path, int flags, int, int how, ...) {
    MODE_ARGUMENT(how)
    return open_at(folder, path, flags, mode);
}

int mac_guarded_open_np(const char* path, const void*, unsigned, int flags, ...) {
    MODE_ARGUMENT(flags)
    return open_at(mac_at_fdcwd, path, flags, mode);
}

int mac_guarded_open_dprotected_np(const char* path, const void*, unsigned, int flags, int, int how,
                                   ...) {
    MODE_ARGUMENT(how)
    return open_at(mac_at_fdcwd, path, flags, mode);
}

const Name names[] = {
    row("_open", mac_open),
    row("_open$NOCANCEL", mac_open_nocancel),
    row("_openat", mac_openat),
    row("_openat$NOCANCEL", mac_openat_nocancel),
    row("_open_dprotected_np", mac_open_dprotected_np),
    row("_openat_dprotected_np", mac_openat_dprotected_np),
    row("_guarded_open_np", mac_guarded_open_np),
    row("_guarded_open_dprotected_np", mac_guarded_open_dprotected_np),
};

} // namespace

std::span<const Name> opening_names() {
    return names;
}

int open_from_the_c_library(const char* path, int flags, int mode) {
    return call_variadic<int>(interposed(reinterpret_cast<void*>(mac_open_nocancel)), mode, path,
                              flags);
}

} // namespace lumo::macos
