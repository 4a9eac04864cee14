// Copying samples: copyfile against `cp -a --reflink=auto`, CPU time of whole processes, in turns.
// Each row has a fresh volume of its own behind a loop device, which takes the superuser and the
// file system's mkfs; without them ext4's rows fall back on the folder for temporary files.
#include "paired_time.h"

#include <copyfile.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using lumo::bench::median;

namespace {

struct Row {
    const char* volume; ///< the kind of file system
    std::size_t size;   ///< of one sample, in bytes
    const char* size_text;
    const char* goal;
};

constexpr Row rows[] = {
    {"ext4", 1 << 20, "1 MB", "1.1"},       {"ext4", 4 << 10, "4 KB", "1.35"},
    {"xfs", 1 << 20, "1 MB", "reported"},   {"xfs", 4 << 10, "4 KB", "reported"},
    {"btrfs", 1 << 20, "1 MB", "reported"}, {"btrfs", 4 << 10, "4 KB", "reported"},
};

struct Amount {
    int files = 1000;
    int rounds = 7;
};

class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = (fs::temp_directory_path() / "lumo-bench-XXXXXX").string();
        if (!mkdtemp(name.data())) {
            throw std::runtime_error("no folder " + name);
        }
        path_ = name;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    const fs::path& path() const { return path_; }

private:
    fs::path path_;
};

/// A fresh, mounted volume, or none where that is not possible.
class LoopVolume {
public:
    LoopVolume(const fs::path& folder, const std::string& kind, std::uintmax_t bytes)
        : mount_(folder / "volume") {
        const fs::path image = folder / "image";
        std::ofstream(image).close();
        fs::resize_file(image, bytes);
        fs::create_directory(mount_);
        is_mounted_ = run("mkfs." + kind + " " + image.string()) &&
                      run("mount -o loop " + image.string() + " " + mount_.string());
    }
    ~LoopVolume() {
        if (is_mounted_) {
            run("umount " + mount_.string());
        }
    }
    LoopVolume(const LoopVolume&) = delete;
    LoopVolume& operator=(const LoopVolume&) = delete;
    bool is_mounted() const { return is_mounted_; }
    const fs::path& path() const { return mount_; }

private:
    static bool run(const std::string& command) {
        return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
    }

    fs::path mount_;
    bool is_mounted_ = false;
};

/// CPU milliseconds, user and system, of `work` in a process of its own.
double cpu_ms(const std::function<bool()>& work) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(work() ? 0 : 1);
    }
    int status = 0;
    rusage usage{};
    if (child < 0 || wait4(child, &status, 0, &usage) != child || status != 0) {
        throw std::runtime_error("a copy failed");
    }
    const auto ms = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
    };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

std::vector<std::string> make_samples(const fs::path& folder, int count, std::size_t size) {
    fs::create_directory(folder);
    std::mt19937 random(1);
    std::string bytes(size, '\0');
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random()); });
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i) {
        names.push_back("sample " + std::to_string(i) + ".wav");
        std::ofstream(folder / names.back(), std::ios::binary) << bytes;
    }
    return names;
}

bool copy_all(const std::vector<std::string>& names, const fs::path& from, const fs::path& to) {
    return std::all_of(names.begin(), names.end(), [&](const std::string& name) {
        return copyfile((from / name).c_str(), (to / name).c_str(), nullptr,
                        COPYFILE_ALL | COPYFILE_CLONE) == 0;
    });
}

bool run_cp(const fs::path& from, const fs::path& to) {
    execlp("cp", "cp", "-a", "--reflink=auto", (from / ".").c_str(), to.c_str(), nullptr);
    return false;
}

/// The first round, in which the machine finds its memory, does not count.
void measure(const Row& row, const Amount& amount, const fs::path& folder, const char* note) {
    const fs::path from = folder / "from";
    const fs::path to = folder / "to";
    const std::vector<std::string> names = make_samples(from, amount.files, row.size);
    std::vector<double> ours;
    std::vector<double> theirs;
    std::vector<double> ratios;
    for (int round = -1; round < amount.rounds; ++round) {
        for (const bool is_ours : {round % 2 == 0, round % 2 != 0}) {
            fs::remove_all(to);
            fs::create_directory(to);
            sync(); // what the last copies left to write is no part of these
            (is_ours ? ours : theirs)
                .push_back(is_ours ? cpu_ms([&] { return copy_all(names, from, to); })
                                   : cpu_ms([&] { return run_cp(from, to); }));
        }
        if (round < 0) {
            ours.clear();
            theirs.clear();
        } else {
            ratios.push_back(ours.back() / theirs.back());
        }
    }
    std::printf("copyfile, %d samples of %s on %s%s\t%.1f ms\t%.1f ms\t%.2f\t%s\n", amount.files,
                row.size_text, row.volume, note, median(ours), median(theirs), median(ratios),
                row.goal);
}

void measure_or_say_why_not(const Row& row, const Amount& amount) {
    const TemporaryFolder folder;
    const std::uintmax_t data = static_cast<std::uintmax_t>(amount.files) * row.size;
    const LoopVolume volume(folder.path(), row.volume, 2 * data + (std::uintmax_t{1} << 30));
    if (volume.is_mounted()) {
        measure(row, amount, volume.path(), "");
    } else if (std::string(row.volume) == "ext4") {
        measure(row, amount, folder.path(), " (not mounted: the temporary folder)");
    } else {
        std::printf("copyfile, samples of %s on %s\t-\t-\t-\tcannot be mounted here\n",
                    row.size_text, row.volume);
    }
    std::fflush(stdout);
}

} // namespace

int main(int count, char** arguments) try {
    const bool small = count > 1 && std::string(arguments[1]) == "--small";
    const Amount amount = small ? Amount{50, 1} : Amount{};
    for (const Row& row : rows) {
        measure_or_say_why_not(row, amount);
    }
} catch (const std::exception& error) {
    std::fprintf(stderr, "bench_copyfile: %s\n", error.what());
    return 1;
}
