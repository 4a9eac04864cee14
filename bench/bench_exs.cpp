// Reading an EXS24 instrument and building its state compared with reading the file's bytes, in CPU
// time, run alternately; also for instruments ten and a hundred times as large, where the time per
// zone must not grow.
#include "paired_time.h"
#include "sampler/exs_layers.h"
#include "sampler/exs_reader.h"
#include "sampler/exs_state.h"
#include "support/exs_builder.h"
#include "support/temp_folder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
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

fs::path write_instrument(const fs::path& folder, int zones) {
    fs::path path = folder / (std::to_string(zones) + ".exs");
    std::ofstream(path, std::ios::binary) << instrument(zones);
    return path;
}

void measure(const fs::path& folder, const std::vector<int>& sizes, int rounds) {
    fs::path smaller;
    for (const int zones : sizes) {
        const fs::path path = write_instrument(folder, zones);
        const std::string name = "EXS24 of " + std::to_string(zones) + " zones to its state, ";
        lumo::bench::compare((name + "against reading its bytes").c_str(), "reported", rounds,
                             [&] { read_and_build(path); },
                             [&] { lumo::bench::keep(bytes_of(path)); });
        if (!smaller.empty()) {
            lumo::bench::compare((name + "against ten of a tenth").c_str(), "linear: 1", rounds,
                                 [&] { read_and_build(path); },
                                 [&] {
                                     for (int i = 0; i < 10; ++i) {
                                         read_and_build(smaller);
                                     }
                                 });
        }
        smaller = path;
    }
}

} // namespace

int main(int count, char** arguments) try {
    const bool small = count > 1 && std::string(arguments[1]) == "--small";
    const lumo::test::TempFolder folder;
    measure(folder.path(), small ? std::vector{100, 1000} : std::vector{1000, 10000, 100000},
            small ? 1 : 9);
} catch (const std::exception& error) {
    std::fprintf(stderr, "bench_exs: %s\n", error.what());
    return 1;
}
