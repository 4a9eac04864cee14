// Indexing a disk of samples compared with `find ROOT -type f` over the same tree: CPU time of
// whole processes, run alternately, including building and freeing the map; and the peak memory of
// the index. The trees resemble a studio's library: vendors, libraries, instruments, articulations;
// five samples per other file; one sample in four has a name that is not unique. The files are
// empty.
#include "child_usage.h"
#include "paired_time.h"
#include "support/temp_folder.h"
#include <lumo/relink.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <initializer_list>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

using lumo::bench::median;
using lumo::bench::Usage;
using lumo::bench::usage_of;

struct Row {
    const char* size_text;
    std::size_t samples;
    std::size_t samples_of_a_folder;
    int rounds;
    const char* goal;
};

constexpr std::array rows{Row{"100,000", 100'000, 26, 11, "1.5"},
                          Row{"1,000,000", 1'000'000, 54, 5, "2.2"}};
constexpr std::array small_rows{Row{"2,000", 2'000, 26, 1, "1.5"}};

using Random = std::mt19937;

std::string pick(std::size_t number, std::initializer_list<const char*> words) {
    return *(words.begin() + number % words.size());
}

/// A path of four levels; each folder of the second and third level contains eight folders.
std::string folder_name(std::size_t number) {
    return pick(number / 512, {"Harmony Instruments", "Field Recordings", "Studio Orchestra"}) +
           "/" + pick(number / 64, {"Symphonic Collection Volume", "World Percussion Set"}) + " " +
           std::to_string(number / 64) + "/" +
           pick(number / 8, {"Violins First", "Drum Room", "Legacy Pulsar", "Grand Concert"}) +
           " " + std::to_string(number / 8) + "/" +
           pick(number, {"Sustain Vibrato", "Staccato Short", "Close Microphones"}) + " " +
           std::to_string(number);
}

/// The name of a sample: three in four have a number that no other sample has, one in four has a
/// name that can occur in other folders too.
std::string sample_name(Random& random, std::size_t sample, const Row& row) {
    const std::string note =
        pick(random(), {"Vln1_Sus_", "Kick Room ", "Pulsar_", "GrandPiano_Cls "}) +
        pick(random(), {"C", "D#", "F", "G#", "A"}) + std::to_string(random() % 8);
    if (random() % 4 == 0) {
        return note + "_" + std::to_string(sample % row.samples_of_a_folder) + ".wav";
    }
    return note + "_v" + std::to_string(random() % 127) + "_" + std::to_string(sample) +
           pick(random(), {".wav", ".aif", ".WAV", ".caf"});
}

void make_file(const fs::path& path) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT, 0600);
    if (file < 0) {
        throw std::runtime_error("no file " + path.string());
    }
    close(file);
}

/// Makes the tree of a row and returns the mean length of its samples' paths.
double make_tree(const fs::path& root, const Row& row) {
    Random random(1);
    std::size_t length = 0;
    fs::path folder;
    for (std::size_t sample = 0; sample < row.samples; ++sample) {
        if (sample % row.samples_of_a_folder == 0) {
            folder = root / folder_name(sample / row.samples_of_a_folder);
            fs::create_directories(folder);
        }
        const fs::path path = folder / sample_name(random, sample, row);
        make_file(path);
        length += path.string().size();
        if (sample % 5 == 0) {
            make_file(folder / ("Notes " + std::to_string(sample) + ".txt"));
        }
    }
    return static_cast<double>(length) / static_cast<double>(row.samples);
}

bool make_index(const char* root, std::size_t samples) {
    lumo::exs::SampleIndex index;
    index.add_root(root);
    return index.entries == samples;
}

bool run_find(const char* root) {
    dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDOUT_FILENO);
    execlp("find", "find", root, "-type", "f", nullptr);
    return false;
}

void print_row(const Row& row) {
    const lumo::test::TempFolder folder;
    const char* const root = "Samples";
    fs::current_path(folder.path());
    const double path_length = make_tree(root, row);
    const double idle_peak = usage_of([] { return make_index("nowhere", 0); }).peak;
    std::vector<double> ours;
    std::vector<double> theirs;
    std::vector<double> ratios;
    std::vector<double> peaks;
    for (int round = 0; round < row.rounds; ++round) {
        theirs.push_back(usage_of([&] { return run_find(root); }).cpu_ms);
        const Usage index = usage_of([&] { return make_index(root, row.samples); });
        ours.push_back(index.cpu_ms);
        ratios.push_back(ours.back() / theirs.back());
        peaks.push_back((index.peak - idle_peak) / static_cast<double>(row.samples));
    }
    fs::current_path("/");
    std::printf("index %s samples; find -type f\t%.1f ms\t%.1f ms\t%.2f\t%s\n", row.size_text,
                median(ours), median(theirs), median(ratios), row.goal);
    std::printf("peak memory a sample, %s; its path\t%.0f B\t%.0f B\t+%.0f B\t+250 B\n",
                row.size_text, median(peaks), path_length, median(peaks) - path_length);
    std::fflush(stdout);
}

} // namespace

int main(int count, char** arguments) try {
    if (count > 1 && std::string(arguments[1]) == "--small") {
        std::for_each(small_rows.begin(), small_rows.end(), print_row);
    } else {
        std::for_each(rows.begin(), rows.end(), print_row);
    }
} catch (const std::exception& error) {
    std::fprintf(stderr, "bench_index: %s\n", error.what());
    return 1;
}
