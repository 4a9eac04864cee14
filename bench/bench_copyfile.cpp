// Copying samples: copyfile compared with `cp -a --reflink=auto`, CPU time of whole processes, run
// alternately.
#include "volumes.h"

#include <copyfile.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace lumo::bench;

constexpr VolumeRow rows[] = {
    {"ext4", 1 << 20, "1 MB", "1.1"},       {"ext4", 4 << 10, "4 KB", "1.35"},
    {"xfs", 1 << 20, "1 MB", "reported"},   {"xfs", 4 << 10, "4 KB", "reported"},
    {"btrfs", 1 << 20, "1 MB", "reported"}, {"btrfs", 4 << 10, "4 KB", "reported"},
};

std::string random_bytes(std::size_t size) {
    std::mt19937 random(1);
    std::string bytes(size, '\0');
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random()); });
    return bytes;
}

bool copy_all(const std::vector<std::string>& names, const fs::path& from, const fs::path& to) {
    return std::all_of(names.begin(), names.end(), [&](const std::string& name) {
        return copyfile((from / name).c_str(), (to / name).c_str(), nullptr,
                        COPYFILE_ALL | COPYFILE_CLONE) == 0;
    });
}

Comparison measure(const VolumeRow& row, const Amount& amount, const fs::path& folder) {
    const fs::path from = folder / "from";
    const fs::path to = folder / "to";
    const std::vector<std::string> names = make_samples(from, amount.files, random_bytes(row.size));
    return compare_copies(
        to, amount.rounds, [&] { return copy_all(names, from, to); },
        [&] { return run_cp(from, to); });
}

} // namespace

int main(int count, char** arguments) try {
    const bool small = count > 1 && std::string(arguments[1]) == "--small";
    const Amount amount = small ? Amount{50, 1} : Amount{};
    for (const VolumeRow& row : rows) {
        compare_on_volume(row, amount, "copyfile",
                          [&](const fs::path& folder) { return measure(row, amount, folder); });
    }
} catch (const std::exception& error) {
    std::fprintf(stderr, "bench_copyfile: %s\n", error.what());
    return 1;
}
