// The variables of libSystem, clocks, and what a program asks of the machine.
#include "loader/image.h"
#include "system/system.h"

#include <stdio.h>
#include <sys/auxv.h>
#include <time.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>

namespace lumo::macos {
namespace {

#if defined(__aarch64__)
constexpr long mac_page_size = 16384;
#else
constexpr long mac_page_size = 4096;
#endif

int mac_clock_gettime(int clock, timespec* time) {
    switch (clock) {
    case 0:
        return ::clock_gettime(CLOCK_REALTIME, time);
    case 4:
        return ::clock_gettime(CLOCK_MONOTONIC_RAW, time);
    case 6:
        return ::clock_gettime(CLOCK_BOOTTIME, time);
    case 8:
        return ::clock_gettime(CLOCK_MONOTONIC, time);
    case 12:
        return ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, time);
    default:
        unknown("clock", clock);
    }
}

long mac_sysconf(int name) {
    switch (name) {
    case 29:
        return mac_page_size;
    case 58:
        return ::sysconf(_SC_NPROCESSORS_ONLN);
    default:
        unknown("sysconf", name);
    }
}

FILE *mac_stdin, *mac_stdout, *mac_stderr;
std::uint64_t stack_guard;
int program_argc;
char** program_argv;

int* mac_argc() {
    return &program_argc;
}

char*** mac_argv() {
    return &program_argv;
}

[[noreturn]] void mac_stub_binder() {
    give_up("lazy binding");
}

const Name names[] = {
    row("___stack_chk_guard", &stack_guard),
    row("___stdinp", &mac_stdin),
    row("___stdoutp", &mac_stdout),
    row("___stderrp", &mac_stderr),
    row("__NSGetArgc", mac_argc),
    row("__NSGetArgv", mac_argv),
    row("_environ", &environ),
    row("dyld_stub_binder", mac_stub_binder),
    row("_clock_gettime", mac_clock_gettime),
    row("_sysconf", mac_sysconf),
};

} // namespace

std::span<const Name> variable_names() {
    return names;
}

void prepare_variables(int argc, char** argv) {
    mac_stdin = stdin;
    mac_stdout = stdout;
    mac_stderr = stderr;
    program_argc = argc;
    program_argv = argv;
    std::memcpy(&stack_guard,
                reinterpret_cast<const void*>( // NOLINT(performance-no-int-to-ptr): it is one
                    ::getauxval(AT_RANDOM)),
                sizeof stack_guard);
}

} // namespace lumo::macos
