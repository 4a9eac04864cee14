// The platform library's calls of libSystem. On a Mac those of the frameworks go through the
// interpose sections, so the linker sends the platform library's open here (--wrap), and it goes on
// as a Mac's would: to the simulated function, or what a loaded library has put in front of it.
//
// How the real sampler looks for a sample and opens it is not known. LUMO_SAMPLER_OPENS names the
// function with which it opens here, LUMO_SAMPLER_LOOKS one with which it looks before that.
#include "frameworks/calls.h"
#include "loader/image.h"
#include "system/flags.h"
#include "system/system.h"

#include <fcntl.h>

#include <cstdarg>
#include <cstdlib>
#include <string>

// The linker's names for the real function and the one that it puts in front.
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

/// Makes an early call, for an absent file, if the system has the function.
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
    if ((flags & O_TMPFILE) == O_TMPFILE) { // there is no such thing on a Mac
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

/// What open is where headers are fortified and the flags are not constant.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" int __wrap___open_2(const char* path, int flags) {
    return __wrap_open(path, flags, 0);
}
