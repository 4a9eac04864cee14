// Measures the CPU time and memory of work in a child process.
#pragma once

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <stdexcept>

namespace lumo::bench {

/// The resources that a child process used.
struct Usage {
    double cpu_ms; ///< user and system
    double peak;   ///< resident, in bytes; at least that of this process at the fork
};

/// Runs `work` in a child process and measures it; `work` may exec another program. Throws
/// std::runtime_error when `work` returns false or the program fails.
inline Usage usage_of(const std::function<bool()>& work) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(work() ? 0 : 1);
    }
    int status = 0;
    rusage usage{};
    if (child < 0 || wait4(child, &status, 0, &usage) != child || status != 0) {
        throw std::runtime_error("a measured process failed");
    }
    const auto ms = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
    };
    return {ms(usage.ru_utime) + ms(usage.ru_stime), static_cast<double>(usage.ru_maxrss) * 1024};
}

} // namespace lumo::bench
