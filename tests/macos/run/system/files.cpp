// The other functions of files and folders, most of which differ in errno only.
#include "loader/image.h"
#include "system/flags.h"
#include "system/system.h"
#include "system/variadic.h"

#include <fcntl.h>
#include <poll.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdarg>

namespace lumo::macos {
namespace {

/// The Mac's realpath is part of the C library and calls lstat for the path, which another library
/// may have interposed.
char* resolve(const char* path, char* resolved) {
    using Lstat = int(const char*, void*);
    alignas(8) char status[256];
    auto* const lstat = reinterpret_cast<Lstat*>(interposed(find_system("_lstat" INODE64)));
    return lstat(path, status) < 0 ? nullptr : done(::realpath(path, resolved));
}

char* mac_realpath(const char* path, char* resolved) {
    return resolve(path, resolved);
}

char* mac_realpath_extended(const char* path, char* resolved) {
    return resolve(path, resolved);
}

int mac_fcntl(int file, int command, ...) {
    va_list arguments;
    va_start(arguments, command);
    take_mac_arguments(arguments);
    const long value = va_arg(arguments, long);
    va_end(arguments);
    switch (command) {
    case 0:
        return done(::fcntl(file, F_DUPFD, static_cast<int>(value)));
    case 1:
        return done(::fcntl(file, F_GETFD));
    case 2:
        return done(::fcntl(file, F_SETFD, static_cast<int>(value)));
    case 3:
        return done(mac_status_flags(::fcntl(file, F_GETFL)));
    case 4:
        return done(::fcntl(file, F_SETFL, status_flags(static_cast<int>(value))));
    case 67:
        return done(::fcntl(file, F_DUPFD_CLOEXEC, static_cast<int>(value)));
    default:
        unknown("fcntl", command);
    }
}

int mac_ioctl(int file, unsigned long request, ...) {
    va_list arguments;
    va_start(arguments, request);
    take_mac_arguments(arguments);
    void* const value = va_arg(arguments, void*);
    va_end(arguments);
    switch (request) {
    case 0x4004667f: // sys/filio.h: _IOR('f', 127, int)
        return done(::ioctl(file, FIONREAD, value));
    case 0x40087468: // sys/ttycom.h: _IOR('t', 104, struct winsize), which is the same
        return done(::ioctl(file, TIOCGWINSZ, value));
    default:
        unknown("ioctl", static_cast<long>(request));
    }
}

int mac_utimensat(int folder, const char* path, const timespec* times, int flags) {
    std::array<timespec, 2> here{};
    for (size_t i = 0; times && i < 2; ++i) {
        here[i] = times[i];
        here[i].tv_nsec = times[i].tv_nsec == -1   ? UTIME_NOW
                          : times[i].tv_nsec == -2 ? UTIME_OMIT
                                                   : times[i].tv_nsec;
    }
    return done(
        ::utimensat(folder_of(folder), path, times ? here.data() : nullptr, at_flags(flags)));
}

// Functions that differ only in results and errno.
#define CHECKED(name, result, parameters, arguments)                                               \
    result mac_##name parameters {                                                                 \
        return done(::name arguments);                                                             \
    }
CHECKED(close, int, (int file), (file))
CHECKED(read, ssize_t, (int file, void* bytes, size_t size), (file, bytes, size))
CHECKED(write, ssize_t, (int file, const void* bytes, size_t size), (file, bytes, size))
CHECKED(pread, ssize_t, (int f, void* b, size_t size, off_t at), (f, b, size, at))
CHECKED(lseek, off_t, (int file, off_t at, int whence), (file, at, whence))
CHECKED(poll, int, (pollfd * polls, unsigned count, int timeout), (polls, count, timeout))
CHECKED(chdir, int, (const char* path), (path))
CHECKED(getcwd, char*, (char* buffer, size_t size), (buffer, size))
CHECKED(mkdir, int, (const char* path, mode_t mode), (path, mode))
CHECKED(mkfifo, int, (const char* path, mode_t mode), (path, mode))
CHECKED(mkdtemp, char*, (char* pattern), (pattern))
CHECKED(mkstemp, int, (char* pattern), (pattern))
CHECKED(chmod, int, (const char* path, mode_t mode), (path, mode))
CHECKED(fchmod, int, (int file, mode_t mode), (file, mode))
CHECKED(ftruncate, int, (int file, off_t size), (file, size))
CHECKED(truncate, int, (const char* path, off_t size), (path, size))
CHECKED(link, int, (const char* from, const char* to), (from, to))
CHECKED(symlink, int, (const char* from, const char* to), (from, to))
CHECKED(rename, int, (const char* from, const char* to), (from, to))
CHECKED(remove, int, (const char* path), (path))
CHECKED(unlink, int, (const char* path), (path))
CHECKED(rmdir, int, (const char* path), (path))
CHECKED(dup, int, (int file), (file))
CHECKED(dup2, int, (int file, int other), (file, other))
CHECKED(pipe, int, (int* files), (files))
CHECKED(fsync, int, (int file), (file))
CHECKED(unlinkat, int, (int f, const char* path, int flags), (folder_of(f), path, at_flags(flags)))
CHECKED(mkdirat, int, (int f, const char* path, mode_t mode), (folder_of(f), path, mode))
CHECKED(fchmodat, int, (int f, const char* path, mode_t mode, int flags),
        (folder_of(f), path, mode, at_flags(flags)))

const Name names[] = {
    row("_realpath", mac_realpath),
    row("_realpath$DARWIN_EXTSN", mac_realpath_extended),
    row("_fcntl", mac_fcntl),
    row("_ioctl", mac_ioctl),
    row("_utimensat", mac_utimensat),
// clang-format off
#define ROW(name) row("_" #name, mac_##name),
    ROW(close) ROW(read) ROW(write) ROW(pread) ROW(lseek) ROW(poll) ROW(chdir)
    ROW(getcwd) ROW(mkdir) ROW(mkfifo) ROW(mkdtemp) ROW(mkstemp) ROW(chmod) ROW(fchmod)
    ROW(ftruncate) ROW(truncate) ROW(link) ROW(symlink) ROW(rename) ROW(remove) ROW(unlink)
    ROW(rmdir) ROW(dup) ROW(dup2) ROW(pipe) ROW(fsync) ROW(unlinkat)
    ROW(mkdirat) ROW(fchmodat)
    // clang-format on
};

} // namespace

std::span<const Name> file_names() {
    return names;
}

} // namespace lumo::macos
