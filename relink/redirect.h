// How a shim makes its call while a session is open: the caller's path first; only where a sample
// is absent, once more with the file that the session names.
#pragma once

#include "session.h"

#include <fcntl.h>

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

// What a look-up asks the disk itself. Each platform's shims define these with the real functions.

/// Whether the process may read the file at `path`.
bool is_readable(const char* path);

/// Whether there is something at `path`, as far as the process can see.
bool is_there(const char* path);

/// Whether `path` is that of a symbolic link.
bool is_link(const char* path);

/// `path` with its links resolved; empty when that cannot be done.
std::string real_path(const char* path);

/// Whether a call for `path` that failed with `error` says that no file is there. Where a folder
/// may not be searched, that cannot be seen, and the file counts as absent. One that is there may
/// fail with any of these but ENOENT: a file that is opened as a folder gives ENOTDIR.
inline bool is_absence(int error, const char* path) {
    return error == ENOENT ||
           ((error == ENOTDIR || error == EACCES || error == EPERM) && !is_there(path));
}

/// As redirect, while a session is open. `opens` says that a call that succeeds has shown that its
/// file may be read, which need not be asked then.
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
        return opened || is_readable(found);
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

/// What `call(path)` gives, or for an absent sample what `call` gives for the session's file.
/// errno is as the call left it whose result this is; when the second call succeeds, as it was
/// before both. Where the session's file is absent by then too, the result is the first call's.
template <class Call>
auto redirect(const char* path, Call call, bool opens = false) {
    return session::is_open() ? redirect_in_session(path, call, opens) : call(path);
}

/// As redirect, for `call(folder, path)`. A name relative to another folder than the current one
/// does not say where a sample was recorded.
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

/// The same for the mode of a stream, which is not null.
inline bool only_reads(const char* mode) {
    return mode[0] == 'r' && !std::strchr(mode, '+');
}

/// Whether an open with these flags asks for the right to read.
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

/// As redirect, for a call that opens as `how` says: flags, or a stream's mode. One that may write
/// goes where its caller says.
template <class How, class Call>
auto redirect_open(How how, const char* path, Call call) {
    return only_reads(how) ? redirect(path, call, asks_to_read(how)) : call(path);
}

/// As redirect_at, for a call that opens as `flags` say.
template <class Call>
auto redirect_open_at(int flags, int folder, const char* path, Call call) {
    return only_reads(flags) ? redirect_at(folder, path, call, asks_to_read(flags))
                             : call(folder, path);
}

} // namespace lumo::exs::relink
