// The C library's own function behind a shim that bears its name.
#pragma once

#include <dlfcn.h>

#include <atomic>
#include <cerrno>
#include <type_traits>

namespace lumo::exs::relink {

/// The next function called `name` in the process's search order behind this library, looked for at
/// its first call: the first calls come before any initialiser of this library has run. Where the
/// system has none, a call fails with ENOSYS: null, or -1.
template <class Function>
class RealFunction {
public:
    constexpr explicit RealFunction(const char* name) : name_(name) {}

    template <class... Arguments>
    auto operator()(Arguments... arguments) {
        using Result = std::invoke_result_t<Function*, Arguments...>;
        Function* function = function_.load(std::memory_order_relaxed);
        if (!function && !(function = find())) {
            errno = ENOSYS;
            return failure<Result>();
        }
        return function(arguments...);
    }

private:
    Function* find() {
        const int before = errno;
        auto* const function = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name_));
        function_.store(function, std::memory_order_relaxed);
        errno = before;
        return function;
    }

    template <class Result>
    static constexpr Result failure() {
        if constexpr (std::is_pointer_v<Result>) {
            return nullptr;
        } else {
            return static_cast<Result>(-1);
        }
    }

    const char* name_;
    std::atomic<Function*> function_{nullptr};
};

} // namespace lumo::exs::relink
