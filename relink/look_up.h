// How a shim makes its call while a session is open: the caller's path first; only where a sample
// is absent, once more with the file that the session names.
#pragma once

#include "session.h"

#include <cerrno>
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

} // namespace lumo::exs::relink
