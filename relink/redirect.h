// Makes the call of a shim while a session is open: with the caller's path first, and if the sample
// is absent, again with the file from the session.
#pragma once

#include "session.h"

#include <fcntl.h>
#include <stdarg.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <type_traits>

namespace lumo::exs::relink {

/// Whether the result of a file function is its failure: null or a negative number.
template <class Value>
bool is_failure(Value value) {
    if constexpr (std::is_pointer_v<Value>) {
        return value == nullptr;
    } else {
        return value < 0;
    }
}

// File system queries of a look-up. Each system's shims define them with the real functions.

/// Whether access(path, mode) succeeds. R_OK: the process may read the file; F_OK: `path` exists
/// and is visible to the process.
bool can_access(const char* path, int mode);

/// Whether `path` is a symbolic link.
bool is_link(const char* path);

/// `path` with its links resolved; empty on failure.
std::string real_path(const char* path);

/// Whether the file at `path` is absent after a call for it failed with `error`. A file in a folder
/// that may not be searched counts as absent. ENOTDIR, EACCES and EPERM are also errors of existing
/// files (ENOTDIR when a file is opened as a folder), so can_access decides.
inline bool is_absence(int error, const char* path) {
    return error == ENOENT ||
           ((error == ENOTDIR || error == EACCES || error == EPERM) && !can_access(path, F_OK));
}

/// Like redirect, while a session is open. With `opens`, success of the call proves that the file
/// can be read, so this is not checked again.
template <class Call>
auto redirect_in_session(const char* path, Call call, bool opens) {
    const int before = errno;
    const session::Inside inside;
    const bool is_wanted = inside.is_first() && session::looks_for(path);
    errno = before;
    const auto result = call(path);
    if (!is_wanted) {
        return result;
    }
    const int error = errno;
    if (!is_failure(result) || !is_absence(error, path)) {
        session::note_present(path, is_link, real_path);
        errno = error;
        return result;
    }
    std::optional<std::remove_const_t<decltype(result)>> opened;
    const auto serves = [&](const char* found) {
        errno = before;
        if (const auto value = opens ? call(found) : result; !is_failure(value)) {
            opened = value;
        }
        return opened || can_access(found, R_OK);
    };
    if (const auto other = session::replacement(path, std::ref(serves))) {
        errno = before;
        if (opened) {
            return *opened;
        }
        const auto second = call(other->c_str());
        const int second_error = errno;
        if (!is_failure(second) || !is_absence(second_error, other->c_str())) {
            errno = is_failure(second) ? second_error : before;
            return second;
        }
    }
    errno = error;
    return result;
}

/// The result of `call(path)`; for an absent sample, that of `call` with the session's file. errno
/// belongs to the call with this result; if the second call succeeds, errno has its value from
/// before both calls. If the session's file is absent by now, the result is that of the first call.
template <class Call>
auto redirect(const char* path, Call call, bool opens = false) {
    return session::is_open() ? redirect_in_session(path, call, opens) : call(path);
}

/// Like redirect, for `call(folder, path)`. A name relative to a folder other than the current one
/// does not identify the recorded path.
template <class Call>
auto redirect_at(int folder, const char* path, Call call, bool opens = false) {
    const bool says_where = folder == AT_FDCWD || (path && path[0] == '/');
    return says_where ? redirect(
                            path, [&](const char* p) { return call(AT_FDCWD, p); }, opens)
                      : call(folder, path);
}

/// Whether an open with these flags can neither write to a file nor create or empty one.
inline bool only_reads(int flags) {
    return (flags & (O_ACCMODE | O_CREAT | O_TRUNC)) == O_RDONLY;
}

/// The same for the mode of a stream; must not be null.
inline bool only_reads(const char* mode) {
    return mode[0] == 'r' && !std::strchr(mode, '+');
}

/// Whether an open with these flags may create a file and has its mode as the next argument.
inline bool has_mode(int flags) {
#ifdef O_TMPFILE
    return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
#else
    return (flags & O_CREAT) != 0;
#endif
}

/// The mode that was passed to a variadic shim; 0 when `flags` require none. `last` is the shim's
/// last named parameter. A macro, because a function can read only its own variable arguments.
#define LUMO_OPEN_MODE(flags, last)                                                                \
    __extension__({                                                                                \
        va_list arguments;                                                                         \
        va_start(arguments, last);                                                                 \
        const int open_mode = has_mode(flags) ? va_arg(arguments, int) : 0;                        \
        va_end(arguments);                                                                         \
        open_mode;                                                                                 \
    })

/// Whether an open with these flags requires read permission.
inline bool asks_to_read(int flags) {
#ifdef O_PATH
    constexpr int no_rights = O_PATH;
#else
    constexpr int no_rights = O_EVTONLY;
#endif
    return (flags & no_rights) == 0;
}

/// The same for the mode of a stream.
inline bool asks_to_read(const char*) {
    return true;
}

/// Like redirect, for a call that opens with `how`: flags, or a stream's mode. A call that may
/// write is not redirected.
template <class How, class Call>
auto redirect_open(How how, const char* path, Call call) {
    return only_reads(how) ? redirect(path, call, asks_to_read(how)) : call(path);
}

/// Like redirect_at, for a call that opens with `flags`.
template <class Call>
auto redirect_open_at(int flags, int folder, const char* path, Call call) {
    return only_reads(flags) ? redirect_at(folder, path, call, asks_to_read(flags))
                             : call(folder, path);
}

} // namespace lumo::exs::relink
