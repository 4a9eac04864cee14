// A function that the program defines takes precedence over the C library's function of that name,
// for other libraries too. The system call opens the file.
#include "recorded_opens.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdarg>
#include <string_view>

namespace lumo::test {

std::vector<std::string> asked_for;
std::string given_instead;

void reset_opens() {
    asked_for.clear();
    given_instead.clear();
}

namespace {

int open_or_redirect(const char* path, int flags, mode_t mode) {
    if (std::string_view(path).starts_with("/recorded/")) {
        asked_for.emplace_back(path);
        path = given_instead.empty() ? path : given_instead.c_str();
    }
    return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

} // namespace
} // namespace lumo::test

extern "C" __attribute__((visibility("default"))) int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = va_arg(arguments, mode_t);
    va_end(arguments);
    return lumo::test::open_or_redirect(path, flags, mode);
}

extern "C" __attribute__((visibility("default"))) int open64(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = va_arg(arguments, mode_t);
    va_end(arguments);
    return lumo::test::open_or_redirect(path, flags, mode);
}
