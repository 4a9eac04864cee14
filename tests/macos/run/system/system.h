// The simulation of libSystem and the frameworks: tables of names and functions. A function has the
// arguments and results of the Mac's (flags, structures, error numbers) and calls functions of this
// system.
#pragma once

#include <cerrno>
#include <span>
#include <type_traits>

namespace lumo::macos {

/// A Mach-O name with its underscore, and the function or variable that simulates it.
struct Name {
    const char* name;
    void* function;
};

// The suffix of functions that depend on the size of inode numbers; arm64 never had two sizes.
#if defined(__aarch64__)
#define INODE64 ""
#else
#define INODE64 "$INODE64"
#endif

/// A Mac program for arm64 reads a whole int from a function with a narrower result; on Linux the
/// upper bits are undefined.
template <class Result>
constexpr bool is_narrow = false;
#if defined(__aarch64__)
template <class Result>
requires std::is_integral_v<Result>
constexpr bool is_narrow<Result> = sizeof(Result) < sizeof(int);
#endif

/// A row of a table.
template <class Function>
Name row(const char* name, Function function) {
    return {name, reinterpret_cast<void*>(function)};
}

template <class Result, class... Arguments>
Name row(const char* name, Result (*function)(Arguments...)) {
    static_assert(!is_narrow<Result>);
    return {name, reinterpret_cast<void*>(function)};
}

// The tables, each in the file of its name.
std::span<const Name> attribute_names();
std::span<const Name> character_names();
std::span<const Name> copying_names();
std::span<const Name> error_names();
std::span<const Name> file_names();
std::span<const Name> folder_names();
std::span<const Name> framework_names();
std::span<const Name> locale_names();
std::span<const Name> mutex_names();
std::span<const Name> opening_names();
std::span<const Name> printing_names();
std::span<const Name> process_names();
std::span<const Name> regex_names();
std::span<const Name> same_names();
std::span<const Name> signal_names();
std::span<const Name> status_names();
std::span<const Name> stream_names();
std::span<const Name> thread_names();
std::span<const Name> variable_names();

/// Sets the variables of libSystem, and those of the program that is about to run.
void prepare_variables(int argc, char** argv);
/// Fills the table of character classes.
void prepare_characters();
/// Calls interposed functions as the system's libraries do before any initialiser has run.
void call_early();

/// The Mac's errno of the calling thread.
int& mac_errno();
int mac_error(int error);   ///< the Mac's number of an error of this system
int linux_error(int error); ///< this system's number of a Mac's error

/// Returns `result` to a Mac program; when it is a failure, sets the Mac's errno from errno.
template <class Result>
Result done(Result result) {
    bool failed = false;
    if constexpr (std::is_pointer_v<Result>) {
        failed = result == nullptr;
    } else {
        failed = result < 0;
    }
    if (failed) {
        mac_errno() = mac_error(errno);
    }
    return result;
}

/// Fails with an error number of this system: sets the Mac's errno and returns -1.
inline int fail(int error) {
    errno = error;
    return done(-1);
}

/// The Mac's number of an error, for functions that return it.
inline int error_result(int error) {
    return mac_error(error);
}

/// Ends the process when a program uses a value that the simulation does not know.
[[noreturn]] void unknown(const char* what, long value);

} // namespace lumo::macos
