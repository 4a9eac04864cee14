// The variables of libSystem, clocks, and information about the machine.
#include "loader/image.h"
#include "system/system.h"

#include <stdio.h>
#include <sys/auxv.h>
#include <time.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>

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
    case 1: // what this system gives a program, since it is this system that starts others
        return ::sysconf(_SC_ARG_MAX);
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
std::string program_path; // absolute, and perhaps that of a link

int* mac_argc() {
    return &program_argc;
}

char*** mac_argv() {
    return &program_argv;
}

int mac_executable_path(char* path, std::uint32_t* size) {
    const auto needed = static_cast<std::uint32_t>(program_path.size() + 1);
    if (*size < needed) {
        *size = needed;
        return -1;
    }
    std::memcpy(path, program_path.c_str(), needed);
    return 0;
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
    row("__NSGetExecutablePath", mac_executable_path),
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
    program_path = std::filesystem::absolute(argv[0]).string();
    std::memcpy(&stack_guard,
                reinterpret_cast<const void*>( // NOLINT(performance-no-int-to-ptr): it is one
                    ::getauxval(AT_RANDOM)),
                sizeof stack_guard);
}

} // namespace lumo::macos
