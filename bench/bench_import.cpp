// The tool as a user runs it: a whole import compared with `cp -a --reflink=auto` of the same
// samples, the import of a library of small instruments compared with copying its tree, the tool's
// start compared with that of /bin/true, and its peak memory, which must not depend on the samples'
// size. CPU time of whole processes, run alternately.
#include "support/preset_text.h"
#include "support/sound_file.h"
#include "support/temp_folder.h"
#include "volumes.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace lumo::bench;

constexpr VolumeRow rows[] = {
    {"ext4", 1 << 20, "1 MB", "1.2"},  {"ext4", 4 << 10, "4 KB", "1.7"},
    {"xfs", 1 << 20, "1 MB", "2.0"},   {"xfs", 4 << 10, "4 KB", "2.0"},
    {"btrfs", 1 << 20, "1 MB", "2.0"}, {"btrfs", 4 << 10, "4 KB", "2.0"},
};

constexpr std::size_t wav_head = 44;
constexpr std::size_t frame_bytes = 2;

/// Makes samples of about `size` bytes and a preset beside them that plays each; returns the
/// preset's path.
fs::path make_instrument(const fs::path& folder, int samples, std::size_t size) {
    const auto frames = static_cast<int>((size - wav_head) / frame_bytes);
    std::vector<std::string> paths;
    for (const std::string& name : make_samples(folder, samples, lumo::test::wav_bytes(frames))) {
        paths.push_back((folder / name).string());
    }
    fs::path preset = folder / "Bench.aupreset";
    std::ofstream(preset) << lumo::test::preset_text(paths);
    return preset;
}

/// Replaces this process, a child, with the program `arguments[0]`; its standard output goes to
/// `report`. Returns false when the program cannot be started.
bool run_program(const std::vector<std::string>& arguments, const fs::path& report) {
    std::vector<char*> words;
    words.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments) {
        words.push_back(const_cast<char*>(argument.c_str()));
    }
    words.push_back(nullptr);
    dup2(open(report.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
    execvp(words[0], words.data());
    return false;
}

bool import(const fs::path& preset, const fs::path& to, const fs::path& report) {
    return run_program(
        {LUMO_TOOL, "--package", to / "Show.lumo", "--states", to / "states", preset}, report);
}

bool import(const fs::path& preset, const fs::path& to) {
    return import(preset, to, to / "report");
}

void require_success(const fs::path& to) {
    if (lumo::test::read_file(to / "report").find("\"ok\":true") == std::string::npos) {
        throw std::runtime_error("the import failed: " + lumo::test::read_file(to / "report"));
    }
}

Comparison compare_import(const VolumeRow& row, const Amount& amount, const fs::path& folder) {
    const fs::path from = folder / "Kit";
    const fs::path to = folder / "to";
    const fs::path preset = make_instrument(from, amount.files, row.size);
    fs::create_directory(to);
    usage_of([&] { return import(preset, to); });
    require_success(to);
    return compare_copies(
        to, amount.rounds, [&] { return import(preset, to); }, [&] { return run_cp(from, to); });
}

constexpr int samples_of_each = 8;

/// Makes instruments, each in its own folder with moved samples of 4 KB; returns their paths.
std::vector<std::string> make_library(const fs::path& folder, int instruments) {
    const std::string sample = lumo::test::wav_bytes((4096 - wav_head) / frame_bytes);
    std::vector<std::string> presets;
    fs::create_directory(folder);
    for (int i = 0; i < instruments; ++i) {
        const std::string kit = "Kit " + std::to_string(i);
        fs::create_directory(folder / kit);
        std::vector<std::string> recorded;
        for (int k = 0; k < samples_of_each; ++k) {
            const std::string name = kit + " " + std::to_string(k) + ".wav";
            std::ofstream(folder / kit / name, std::ios::binary) << sample;
            recorded.push_back(("/Volumes/Gone/Library" / fs::path(kit) / name).string());
        }
        presets.push_back((folder / kit / (kit + ".aupreset")).string());
        std::ofstream(presets.back()) << lumo::test::preset_text(recorded);
    }
    return presets;
}

std::vector<std::string> command_for_library(const fs::path& to,
                                             const std::vector<std::string>& presets) {
    std::vector<std::string> words = {LUMO_TOOL, "--package", to / "Show.lumo", "--states",
                                      to / "states"};
    words.insert(words.end(), presets.begin(), presets.end());
    return words;
}

/// Adds a round on a new volume, because deleted files make ext4 slow.
void add_library_round(Comparison& rounds, const fs::path& folder, int instruments) {
    const std::vector<std::string> presets = make_library(folder / "Library", instruments);
    const auto ours = [&] {
        fs::create_directory(folder / "ours");
        finish_writing(folder);
        return usage_of([&] {
                   return run_program(command_for_library(folder / "ours", presets),
                                      folder / "report");
               })
            .cpu_ms;
    };
    const auto reference = [&] {
        fs::create_directory(folder / "reference");
        finish_writing(folder);
        return usage_of([&] { return run_cp(folder / "Library", folder / "reference"); }).cpu_ms;
    };
    const bool is_first = rounds.ours.size() % 2 == 0;
    const double first = is_first ? ours() : reference();
    const double second = is_first ? reference() : ours();
    rounds.ours.push_back(is_first ? first : second);
    rounds.reference.push_back(is_first ? second : first);
    rounds.ratios.push_back(rounds.ours.back() / rounds.reference.back());
    if (lumo::test::read_file(folder / "report").find("\"ok\":false") != std::string::npos) {
        throw std::runtime_error("an import of the library failed");
    }
}

void print_library(int instruments, int rounds) {
    const std::string work = std::to_string(instruments) + " instruments of " +
                             std::to_string(samples_of_each) +
                             " samples of 4 KB that moved, on a fresh ext4";
    Comparison result;
    for (int round = 0; round < rounds; ++round) {
        const lumo::test::TempFolder folder;
        const lumo::test::LoopVolume volume(folder.path(), "ext4", std::uintmax_t{2} << 30);
        if (!volume.is_mounted()) {
            std::printf("%s\t-\t-\t-\tcannot be mounted here\n", work.c_str());
            return;
        }
        add_library_round(result, volume.path(), instruments);
    }
    result.print(work, "1.5");
}

/// The number of system calls of an import of a library; nothing without strace.
std::optional<double> system_calls(const fs::path& folder, int instruments) {
    const std::vector<std::string> presets =
        make_library(folder / std::to_string(instruments), instruments);
    const fs::path to = folder / (std::to_string(instruments) + " to");
    const fs::path trace = folder / "trace";
    std::vector<std::string> words = {"strace", "-f", "-s", "0", "-o", trace};
    for (std::string& word : command_for_library(to, presets)) {
        words.push_back(std::move(word));
    }
    try {
        usage_of([&] { return run_program(words, folder / "report"); });
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
    const std::string lines = lumo::test::read_file(trace);
    return static_cast<double>(std::count(lines.begin(), lines.end(), '\n'));
}

/// Prints the system calls for one more sample and its share of an instrument, without those of the
/// start.
void print_system_calls() {
    constexpr int few = 10;
    constexpr int many = 40;
    const lumo::test::TempFolder folder;
    const std::optional<double> of_few = system_calls(folder.path(), few);
    const std::optional<double> of_many = system_calls(folder.path(), many);
    const char* work = "system calls for each of their samples";
    if (of_few && of_many) {
        std::printf("%s\t%.1f\t-\t-\t24\n", work,
                    (*of_many - *of_few) / ((many - few) * samples_of_each));
    } else {
        std::printf("%s\t-\t-\t-\tstrace cannot run here\n", work);
    }
    std::fflush(stdout);
}

/// The peak memory of an import, in megabytes.
double peak_of_import(int samples, std::size_t size) {
    const lumo::test::TempFolder folder;
    const fs::path preset = make_instrument(folder / "Kit", samples, size);
    const fs::path to = folder / "to";
    fs::create_directory(to);
    const Usage usage = usage_of([&] { return import(preset, to); });
    require_success(to);
    return usage.peak / (1 << 20);
}

void print_peak(int samples, std::size_t megabytes) {
    const double large = peak_of_import(samples, megabytes << 20);
    const double tiny = peak_of_import(samples, 4 << 10);
    std::printf(
        "peak memory of an import, %d x %zu MB; of 4 KB each\t%.1f MB\t%.1f MB\t%.2f\t1.1\n",
        samples, megabytes, large, tiny, large / tiny);
    std::fflush(stdout);
}

/// For a file that is not an instrument the tool only starts and prints a line. The standard output
/// of both programs is /dev/null: creating a file takes as long as some of the start.
void print_start(int rounds) {
    const lumo::test::TempFolder folder;
    std::vector<double> ours;
    std::vector<double> reference;
    for (int round = 0; round < rounds; ++round) {
        ours.push_back(usage_of([&] {
                           return import(folder / "none.txt", folder.path(), "/dev/null");
                       }).cpu_ms);
        reference.push_back(
            usage_of([] { return run_program({"/bin/true"}, "/dev/null"); }).cpu_ms);
    }
    std::printf("starting the tool; /bin/true\t%.2f ms\t%.2f ms\t%.2f\t2.0\n", median(ours),
                median(reference), median(ours) / median(reference));
    std::fflush(stdout);
}

} // namespace

int main(int count, char** arguments) try {
    const bool small = count > 1 && std::string(arguments[1]) == "--small";
    const Amount amount = small ? Amount{50, 1} : Amount{};
    print_start(small ? 5 : 200);
    print_library(small ? 20 : 2000, small ? 2 : 6);
    print_system_calls();
    print_peak(1, small ? 16 : 256);
    print_peak(amount.files, 1);
    for (const VolumeRow& row : rows) {
        compare_on_volume(row, amount, "a whole import", [&](const fs::path& folder) {
            return compare_import(row, amount, folder);
        });
    }
} catch (const std::exception& error) {
    std::fprintf(stderr, "bench_import: %s\n", error.what());
    return 1;
}
