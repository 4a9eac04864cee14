// The tool as it is run: a whole import against `cp -a --reflink=auto` of the same samples, its
// start against that of /bin/true, and the most memory that it takes, which must not follow the
// samples' size. CPU time of whole processes, in turns.
#include "support/preset_text.h"
#include "support/sound_file.h"
#include "support/temp_folder.h"
#include "volumes.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace lumo::bench;

constexpr VolumeRow rows[] = {
    {"ext4", 1 << 20, "1 MB", "1.2"},       {"ext4", 4 << 10, "4 KB", "reported"},
    {"xfs", 1 << 20, "1 MB", "reported"},   {"xfs", 4 << 10, "4 KB", "reported"},
    {"btrfs", 1 << 20, "1 MB", "reported"}, {"btrfs", 4 << 10, "4 KB", "reported"},
};

constexpr std::size_t wav_head = 44;
constexpr std::size_t frame_bytes = 2;

/// Makes samples of about `size` bytes and a preset beside them that plays each; its path.
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

/// To be called in a process of its own, which becomes the tool; what it prints goes to `report`.
bool run_tool(const std::vector<std::string>& arguments, const fs::path& report) {
    std::vector<char*> words;
    words.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments) {
        words.push_back(const_cast<char*>(argument.c_str()));
    }
    words.push_back(nullptr);
    dup2(open(report.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
    execv(LUMO_TOOL, words.data());
    return false;
}

bool import(const fs::path& preset, const fs::path& to) {
    return run_tool({LUMO_TOOL, "--package", to / "Show.lumo", "--states", to / "states", preset},
                    to / "report");
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

/// The start is all that there is to do for a file that is no instrument.
void print_start(int rounds) {
    const lumo::test::TempFolder folder;
    std::vector<double> ours;
    std::vector<double> reference;
    for (int round = 0; round < rounds; ++round) {
        ours.push_back(usage_of([&] { return import(folder / "none.txt", folder.path()); }).cpu_ms);
        reference.push_back(
            usage_of([] { return execl("/bin/true", "true", nullptr) == 0; }).cpu_ms);
    }
    const double more = median(ours) - median(reference);
    std::printf("starting the tool; /bin/true\t%.2f ms\t%.2f ms\t+%.2f ms\t+3 ms\n", median(ours),
                median(reference), more);
    std::fflush(stdout);
}

} // namespace

int main(int count, char** arguments) try {
    const bool small = count > 1 && std::string(arguments[1]) == "--small";
    const Amount amount = small ? Amount{50, 1} : Amount{};
    print_start(small ? 5 : 200);
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
