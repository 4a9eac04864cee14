// Compares ways to copy samples between folders, on new volumes behind loop devices. These require
// root and the file system's mkfs; otherwise the rows of ext4 use the folder for temporary files,
// and the others print why they cannot run.
#pragma once

#include "child_usage.h"
#include "paired_time.h"
#include "support/loop_volume.h"
#include "support/temp_folder.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace lumo::bench {

namespace fs = std::filesystem;

/// A row of the table: samples of one size on one kind of volume.
struct VolumeRow {
    const char* volume;    ///< the file system of the volume
    std::size_t size;      ///< of one sample, in bytes
    const char* size_text; ///< the same as text
    const char* goal;      ///< the last cell of the row
};

/// The amount of work.
struct Amount {
    int files = 1000; ///< samples per copy
    int rounds = 7;
};

/// Writes `count` files with the same bytes and returns their names.
inline std::vector<std::string> make_samples(const fs::path& folder, int count,
                                             const std::string& bytes) {
    fs::create_directory(folder);
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i) {
        names.push_back("sample " + std::to_string(i) + ".wav");
        std::ofstream(folder / names.back(), std::ios::binary) << bytes;
    }
    return names;
}

/// Execs `cp`; to be called in a child process.
inline bool run_cp(const fs::path& from, const fs::path& to) {
    execlp("cp", "cp", "-a", "--reflink=auto", (from / ".").c_str(), to.c_str(), nullptr);
    return false;
}

/// Writes pending data of earlier copies to disk, so that the next measurement excludes it.
inline void finish_writing(const fs::path& folder) {
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    syncfs(descriptor);
    close(descriptor);
}

/// The results of a comparison, with one element per round.
struct Comparison {
    std::vector<double> ours;      ///< CPU time in milliseconds
    std::vector<double> reference; ///< the same
    std::vector<double> ratios;    ///< ours divided by the reference

    /// Prints the row of the medians.
    void print(const std::string& work, const char* goal) const {
        std::printf("%s\t%.1f ms\t%.1f ms\t%.2f\t%s\n", work.c_str(), median(ours),
                    median(reference), median(ratios), goal);
        std::fflush(stdout);
    }
};

/// Runs both alternately, each in a child process and with `to` as a new empty folder. The first
/// round is a warm-up and not counted.
inline Comparison compare_copies(const fs::path& to, int rounds, const std::function<bool()>& ours,
                                 const std::function<bool()>& reference) {
    const auto measure = [&](const std::function<bool()>& work) {
        fs::remove_all(to);
        fs::create_directory(to);
        finish_writing(to);
        return usage_of(work).cpu_ms;
    };
    measure(ours);
    measure(reference);
    Comparison result;
    for (int round = 0; round < rounds; ++round) {
        const double first = measure(round % 2 == 0 ? ours : reference);
        const double second = measure(round % 2 == 0 ? reference : ours);
        result.ours.push_back(round % 2 == 0 ? first : second);
        result.reference.push_back(round % 2 == 0 ? second : first);
        result.ratios.push_back(result.ours.back() / result.reference.back());
    }
    return result;
}

/// Prints the row with the result of `measure` in a folder on the row's volume, or why it cannot
/// run. `work` describes what is done with the samples.
inline void compare_on_volume(const VolumeRow& row, const Amount& amount, const std::string& work,
                              const std::function<Comparison(const fs::path& folder)>& measure) {
    const test::TempFolder folder;
    const std::string name = work + ", " + std::to_string(amount.files) + " samples of " +
                             row.size_text + " on " + row.volume;
    const std::uintmax_t data = static_cast<std::uintmax_t>(amount.files) * row.size;
    const test::LoopVolume volume(folder.path(), row.volume, 2 * data + (std::uintmax_t{1} << 30));
    if (volume.is_mounted()) {
        measure(volume.path()).print(name, row.goal);
    } else if (std::string(row.volume) == "ext4") {
        measure(folder.path()).print(name + " (not mounted: the temporary folder)", row.goal);
    } else {
        std::printf("%s\t-\t-\t-\tcannot be mounted here\n", name.c_str());
        std::fflush(stdout);
    }
}

} // namespace lumo::bench
