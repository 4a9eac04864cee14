// Reading an EXS24 instrument and building its state, against reading the file's bytes, in turns
// and in CPU time, over instruments ten and a hundred times as large: the time for a zone must not
// grow.
#include "sampler/exs_layers.h"
#include "sampler/exs_reader.h"
#include "sampler/exs_state.h"
#include "support/exs_builder.h"
#include "support/temp_folder.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using lumo::test::ExsBuilder;

namespace {

constexpr int zones_a_sample = 4;
constexpr int groups = 16;

std::string instrument(int zones) {
    ExsBuilder builder(lumo::test::exs_layouts[8]);
    for (int i = 0; i < zones; ++i) {
        builder.zone({.name = "Zone #" + std::to_string(i + 1),
                      .options = 8,
                      .volume = -3,
                      .low_key = i % 128,
                      .high_key = i % 128,
                      .low_velocity = 1,
                      .high_velocity = 100,
                      .loop_start = 100,
                      .loop_end = 900,
                      .loop_options = 1,
                      .group = i % (groups + 1) - 1,
                      .sample = i / zones_a_sample});
    }
    for (int i = 0; i < groups; ++i) {
        builder.group({.name = "Group " + std::to_string(i + 1)});
    }
    for (int i = 0; i < zones; i += zones_a_sample) {
        builder.sample({.name = "sample " + std::to_string(i) + ".wav"});
    }
    return builder.bytes();
}

std::string bytes_of(const fs::path& path) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat info {};
    if (file < 0 || fstat(file, &info) != 0) {
        throw std::runtime_error("cannot open " + path.string());
    }
    std::string bytes(static_cast<std::size_t>(info.st_size), '\0');
    const ssize_t count = read(file, bytes.data(), bytes.size());
    close(file);
    if (count != info.st_size) {
        throw std::runtime_error("cannot read " + path.string());
    }
    return bytes;
}

void read_and_build(const fs::path& path) {
    const std::string bytes = bytes_of(path);
    const auto read = lumo::platform::read_exs(
        {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
    if (!read || !lumo::platform::exs_instrument_state(*read, lumo::platform::exs_layers(*read),
                                                       "Bench.exs")) {
        throw std::runtime_error("the instrument was refused");
    }
}

double cpu_ms() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto ms = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
    };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

/// CPU milliseconds of one of `repeats` times `work`.
template <class Work>
double cpu_ms(int repeats, const Work& work) {
    const double before = cpu_ms();
    for (int i = 0; i < repeats; ++i) {
        work();
    }
    return (cpu_ms() - before) / repeats;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// CPU milliseconds of reading and building.
double measure(const fs::path& folder, int zones, int rounds) {
    const fs::path path = folder / (std::to_string(zones) + ".exs");
    std::ofstream(path, std::ios::binary) << instrument(zones);
    const int repeats = std::max(1, 20000 / zones);
    std::vector<double> ours;
    std::vector<double> theirs;
    for (int round = 0; round < rounds; ++round) {
        ours.push_back(cpu_ms(repeats, [&] { read_and_build(path); }));
        theirs.push_back(cpu_ms(repeats, [&] { bytes_of(path); }));
    }
    std::printf(
        "EXS24 of %d zones to its state\t%.2f ms\t%.2f ms (its bytes read)\t%.1f\treported\n",
        zones, median(ours), median(theirs), median(ours) / median(theirs));
    return median(ours);
}

void measure_growth(const fs::path& folder, const std::vector<int>& sizes, int rounds) {
    double smaller = 0;
    for (const int zones : sizes) {
        const double time = measure(folder, zones, rounds);
        if (smaller > 0) {
            std::printf("EXS24, a zone of %d against one of %d\t%.2f us\t%.2f us\t%.2f\tlinear\n",
                        zones, zones / 10, time / zones * 1e3, smaller / (zones / 10.0) * 1e3,
                        time / smaller / 10);
        }
        smaller = time;
    }
}

} // namespace

int main(int count, char** arguments) try {
    const bool small = count > 1 && std::string(arguments[1]) == "--small";
    const lumo::test::TempFolder folder;
    measure_growth(folder.path(), small ? std::vector{100, 1000} : std::vector{1000, 10000, 100000},
                   small ? 1 : 9);
} catch (const std::exception& error) {
    std::fprintf(stderr, "bench_exs: %s\n", error.what());
    return 1;
}
