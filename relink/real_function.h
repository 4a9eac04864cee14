// The C library's own function, called by the shim of the same name.
#pragma once

#include <dlfcn.h>

#include <atomic>
#include <cerrno>
#include <type_traits>

namespace lumo::exs::relink {

/// The next function called `name` after this library in the search order of the process. It is
/// looked up at its first call, since calls may come before any initialiser of this library has
/// run. If the system has no such function, a call returns null or -1 with errno ENOSYS.
template <class Function>
class RealFunction {
public:
    constexpr explicit RealFunction(const char* name) : name_(name) {}

    template <class... Arguments>
    auto operator()(Arguments... arguments) {
        using Returned = std::invoke_result_t<Function*, Arguments...>;
        Function* function = function_.load(std::memory_order_relaxed);
        if (!function && !(function = find())) {
            errno = ENOSYS;
            return failure<Returned>();
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
