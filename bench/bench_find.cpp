// Looking samples up: find in an index of a million entries, compared with the cost of the name
// alone (extracted from the path, folded, hashed); find among many files with one name, compared
// with a plain byte comparison of the same paths; and a look-up through a shim without a session,
// compared with the C library's function.
#include "paired_time.h"
#include <lumo/relink.h>

#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

using lumo::exs::SampleIndex;
using Random = std::mt19937;

struct Amount {
    std::size_t entries;
    std::size_t candidates;
    std::size_t queries;
    int rounds;
};

/// Writes an ASCII name in lower case to `key`, whose storage is reused.
void fold(std::string_view name, std::string& key) {
    key.resize(name.size());
    std::transform(name.begin(), name.end(), key.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
    });
}

/// One name in five is drawn from 5,000 names that other samples have too.
std::string sample_name(Random& random, std::size_t sample) {
    const std::size_t number = random() % 5 == 0 ? random() % 5'000 : sample;
    return "GrandPiano_Close " + std::to_string(number) + "_v" + std::to_string(number % 127) +
           ".WAV";
}

std::string folders(std::size_t number) {
    return "/Library " + std::to_string(number % 7) + "/Symphonic Collection Volume " +
           std::to_string(number / 512) + "/Violins First " + std::to_string(number / 64) +
           "/Sustain Vibrato " + std::to_string(number / 8) + "/Close Microphones " +
           std::to_string(number) + "/";
}

/// Fills an index and returns missing recorded paths of its samples in random order.
std::vector<std::string> fill(SampleIndex& index, const Amount& amount) {
    Random random(1);
    std::string key;
    std::vector<std::string> recorded;
    recorded.reserve(amount.entries);
    for (std::size_t sample = 0; sample < amount.entries; ++sample) {
        const std::string name = sample_name(random, sample);
        const std::string path = folders(sample / 54) + name;
        fold(name, key);
        index.files[key].push_back({"/Volumes/Studio" + path, "/Volumes/Studio"});
        recorded.push_back("/Users/someone/Music" + path);
    }
    index.entries = amount.entries;
    std::shuffle(recorded.begin(), recorded.end(), random);
    recorded.resize(amount.queries);
    return recorded;
}

/// Ratio of finding each path to folding and hashing its name.
void compare_find(const Amount& amount) {
    SampleIndex index;
    const std::vector<std::string> recorded = fill(index, amount);
    const auto find_all = [&] {
        for (const std::string& path : recorded) {
            lumo::bench::keep(index.find(path));
        }
    };
    std::string key;
    const auto fold_all = [&] {
        for (const std::string& path : recorded) {
            fold(std::string_view(path).substr(path.rfind('/') + 1), key);
            lumo::bench::keep(std::hash<std::string>()(key));
        }
    };
    const std::string name = std::to_string(recorded.size()) + " finds in " +
                             std::to_string(amount.entries) + " entries; the names alone";
    lumo::bench::compare(name.c_str(), "15", amount.rounds, find_all, fold_all);
}

/// The length of the longest common suffix of two strings, in bytes.
std::size_t count_shared(std::string_view a, std::string_view b) {
    std::size_t count = 0;
    while (count < a.size() && count < b.size() &&
           a[a.size() - 1 - count] == b[b.size() - 1 - count]) {
        ++count;
    }
    return count;
}

/// Ratio of choosing a candidate for a sample recorded in `folder` to comparing bytes. `what`
/// describes the candidates in the table.
void compare_choice(const SampleIndex& index, const std::string& folder, const char* what,
                    const char* goal, int rounds) {
    const std::vector<SampleIndex::Entry>& entries = index.files.begin()->second;
    const std::string recorded = folder + "Kick.wav";
    const auto find = [&] { lumo::bench::keep(index.find(recorded)); };
    const auto compare_bytes = [&] {
        std::size_t most = 0;
        const SampleIndex::Entry* best = nullptr;
        for (const SampleIndex::Entry& entry : entries) {
            const std::size_t count = count_shared(entry.path, recorded);
            if (count > most) {
                most = count;
                best = &entry;
            }
        }
        lumo::bench::keep(best);
    };
    const std::string name = "find among " + std::to_string(entries.size()) + " of one name, " +
                             what + "; their bytes compared";
    lumo::bench::compare(name.c_str(), goal, rounds, find, compare_bytes);
}

void compare_choices(const Amount& amount) {
    SampleIndex index;
    std::vector<SampleIndex::Entry>& entries = index.files["kick.wav"];
    for (std::size_t i = 0; i < amount.candidates; ++i) {
        entries.push_back({"/Volumes/Studio" + folders(i) + "Kick.wav", "/Volumes/Studio"});
    }
    std::shuffle(entries.begin(), entries.end(), Random(1));
    const std::string near = "/Users/someone/Music" + folders(amount.candidates / 2);
    compare_choice(index, near, "one of them near", "1.5", amount.rounds);
    compare_choice(index, "/Gone/", "none of them near", "reported", amount.rounds);
}

/// The cost of a shim without a session. The path is empty, so that the system call is as short as
/// possible.
void compare_idle_shim(const Amount& amount) {
    void* const c_library = dlopen("libc.so.6", RTLD_NOW);
    auto* const real = c_library
                           ? reinterpret_cast<int (*)(const char*, int)>(dlsym(c_library, "access"))
                           : nullptr;
    if (!real) {
        std::printf("access without a session; the C library's\t-\t-\t-\tno libc.so.6 here\n");
        return;
    }
    const auto times = amount.queries;
    const auto call_shim = [&] {
        for (std::size_t i = 0; i < times; ++i) {
            lumo::bench::keep(access("", F_OK));
        }
    };
    const auto call_real = [&] {
        for (std::size_t i = 0; i < times; ++i) {
            lumo::bench::keep(real("", F_OK));
        }
    };
    const std::string name =
        std::to_string(times) + " calls of access without a session; the C library's";
    lumo::bench::compare(name.c_str(), "reported", amount.rounds, call_shim, call_real);
}

} // namespace

int main(int count, char** arguments) try {
    const bool is_small = count > 1 && std::string_view(arguments[1]) == "--small";
    const Amount amount =
        is_small ? Amount{10'000, 1'000, 1'000, 1} : Amount{1'000'000, 100'000, 200'000, 11};
    compare_find(amount);
    compare_choices(amount);
    compare_idle_shim(amount);
} catch (const std::exception& error) {
    std::fprintf(stderr, "bench_find: %s\n", error.what());
    return 1;
}
