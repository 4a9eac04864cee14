// Measures two functions alternately and prints their row of the table.
#pragma once

#include <time.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <vector>

namespace lumo::bench {

/// CPU time of this process so far, user and system, in seconds.
inline double cpu_seconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// Mean CPU time of `times` calls of `work`, in seconds per call.
template <typename Work>
double cpu_seconds_of(Work& work, int times) {
    const double start = cpu_seconds();
    for (int i = 0; i < times; ++i) {
        work();
    }
    return (cpu_seconds() - start) / times;
}

/// The median of `values`, which must not be empty; the upper of two in the middle.
inline double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// Prevents the compiler from removing the computation of `value`.
template <typename T>
void keep(const T& value) {
    asm volatile("" : : "r"(&value) : "memory");
}

/// The number of calls of `work` that take about 20 ms, measured after one warm-up call.
template <typename Work>
int calls_of_a_round(Work& work) {
    work();
    return static_cast<int>(0.02 / cpu_seconds_of(work, 1)) + 1;
}

/// Runs `ours` and `reference` alternately, each for about 20 ms per round, and prints the medians
/// and the median of the rounds' ratios.
template <typename Ours, typename Reference>
void compare(const char* name, const char* goal, int rounds, Ours ours, Reference reference) {
    const int ours_often = calls_of_a_round(ours);
    const int reference_often = calls_of_a_round(reference);
    std::vector<double> ours_times;
    std::vector<double> reference_times;
    std::vector<double> ratios;
    for (int round = 0; round < rounds; ++round) {
        ours_times.push_back(cpu_seconds_of(ours, ours_often));
        reference_times.push_back(cpu_seconds_of(reference, reference_often));
        ratios.push_back(ours_times.back() / reference_times.back());
    }
    std::printf("%s\t%.4g ms\t%.4g ms\t%.3f\t%s\n", name, median(ours_times) * 1e3,
                median(reference_times) * 1e3, median(ratios), goal);
    std::fflush(stdout);
}

} // namespace lumo::bench
