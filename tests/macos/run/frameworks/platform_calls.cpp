// The platform library's calls of libSystem. On a Mac the frameworks' calls go through the
// interpose sections. The linker therefore redirects the platform library's calls of open to this
// file (--wrap), which calls the function that such a call would reach on a Mac: the simulated
// function or a loaded library's replacement.
//
// It is not known which functions the real sampler calls. LUMO_SAMPLER_OPENS names the function
// that opens samples here, LUMO_SAMPLER_LOOKS one that checks before whether they exist.
#include "frameworks/calls.h"
#include "loader/image.h"
#include "system/flags.h"
#include "system/system.h"

#include <fcntl.h>

#include <cstdarg>
#include <cstdlib>
#include <string>

// The linker's names for the real function and its replacement.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" int __real_open(const char*, int, ...);
extern "C" int __wrap_open(const char*, int, ...);
extern "C" int __wrap___open_2(const char*, int);
// NOLINTEND(bugprone-reserved-identifier)

namespace lumo::macos {
namespace {

std::string setting(const char* name, const char* otherwise) {
    const char* value = std::getenv(name);
    return value && *value ? value : otherwise;
}

/// Calls a function for an absent file, before any initialiser, if the system has the function.
template <class Call>
void expect_absence(const char* function, Call call) {
    constexpr int no_such_file = 2;
    if (find_system(std::string("_") + function) && (call() != -1 || mac_errno() != no_such_file)) {
        give_up("an early call of an absent file did not fail as it should");
    }
}

} // namespace

void call_early() {
    alignas(8) char room[4096];
    const char* absent = "/nowhere/early.wav";
    for (const char* how : {"open", "open$NOCANCEL", "fopen"}) {
        expect_absence(how, [&] { return open_with(how, absent, 0, 0); });
    }
    for (const char* how : {"stat" INODE64, "lstat" INODE64}) {
        expect_absence(how, [&] {
            return system_call<int(const char*, void*)>(std::string("_") + how)(absent, room);
        });
    }
    expect_absence("access",
                   [&] { return system_call<int(const char*, int)>("_access")(absent, 0); });
    mac_errno() = 0;
}

} // namespace lumo::macos

using namespace lumo::macos;

// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" int __wrap_open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const int mode = va_arg(arguments, int);
    va_end(arguments);
    if ((flags & O_TMPFILE) == O_TMPFILE) { // a Mac has no unnamed files
        return __real_open(path, flags, mode);
    }
    const bool reads = (flags & (O_ACCMODE | O_CREAT)) == O_RDONLY;
    if (reads && !look_with(setting("LUMO_SAMPLER_LOOKS", ""), path)) {
        errno = linux_error(mac_errno());
        return -1;
    }
    const int file = open_with(reads ? setting("LUMO_SAMPLER_OPENS", "open") : "open", path,
                               mac_open_flags(flags), mode);
    if (file < 0) {
        errno = linux_error(mac_errno());
    }
    return file;
}

/// With fortified headers, open is this function where the flags are not constant.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" int __wrap___open_2(const char* path, int flags) {
    return __wrap_open(path, flags, 0);
}
