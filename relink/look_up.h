// How a shim makes its call while a session is open: the caller's path first; only where a sample
// is absent, once more with the file that the session names.
#pragma once

#include "session.h"

#include <fcntl.h>

#include <cerrno>
#include <cstring>
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

/// Whether the process may read the file at `path`. Each platform's shims define it with the real
/// function.
bool is_readable(const char* path);

/// look_up while a session is open.
template <class Call>
auto look_up_in_session(const char* path, Call call) {
    const int before = errno;
    const session::Inside inside;
    const bool is_wanted = inside.is_first() && session::looks_for(path);
    errno = before;
    const auto result = call(path);
    if (!is_wanted || !is_failure(result) || (errno != ENOENT && errno != ENOTDIR)) {
        return result;
    }
    const int absent = errno;
    if (const auto other = session::replacement(path, is_readable)) {
        const auto second = call(other->c_str());
        if (!is_failure(second)) {
            errno = before;
            return second;
        }
    }
    errno = absent;
    return result;
}

/// What `call(path)` gives, or for an absent sample what `call` gives for the session's file.
/// errno is as the real function left it; when the second call succeeds, as it was before both.
template <class Call>
auto look_up(const char* path, Call call) {
    return session::is_open() ? look_up_in_session(path, call) : call(path);
}

/// look_up for `call(folder, path)`. A name relative to another folder than the current one does
/// not say where a sample was recorded.
template <class Call>
auto look_up_at(int folder, const char* path, Call call) {
    const bool says_where = folder == AT_FDCWD || (path && path[0] == '/');
    return says_where ? look_up(path, [&](const char* p) { return call(AT_FDCWD, p); })
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

/// look_up for a call that opens as `how` says: flags, or a stream's mode. One that may write goes
/// where its caller says.
template <class How, class Call>
auto look_up_to_open(How how, const char* path, Call call) {
    return only_reads(how) ? look_up(path, call) : call(path);
}

/// look_up_at for a call that opens as `flags` say.
template <class Call>
auto look_up_at_to_open(int flags, int folder, const char* path, Call call) {
    return only_reads(flags) ? look_up_at(folder, path, call) : call(folder, path);
}

} // namespace lumo::exs::relink
