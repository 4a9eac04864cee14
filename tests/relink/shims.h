// Shared by the tests of the shims on all systems. Each system's source lists its shims.
#pragma once

#undef _FORTIFY_SOURCE // it would replace the functions that the tests name by others

#include "support/temp_folder.h"
#include <lumo/relink.h>

#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace lumo::exs {

namespace fs = std::filesystem;
using Path = const char*;

inline constexpr const char* sample_bytes = "the sound of a kick";
inline constexpr off_t sample_size = 19;
inline constexpr int untouched = 77; ///< an error number that no call in these tests sets

/// Whether the sample can be read from the descriptor. Closes it and leaves errno unchanged.
inline bool reads(int file) {
    const int error = errno;
    std::array<char, 64> read{};
    const bool is_right = file >= 0 && ::read(file, read.data(), read.size()) == sample_size &&
                          std::string(read.data()) == sample_bytes;
    if (file >= 0) {
        close(file);
    }
    errno = error;
    return is_right;
}

inline bool reads(FILE* stream) {
    const int error = errno;
    std::array<char, 64> read{};
    const bool is_right = stream && fgets(read.data(), read.size(), stream) &&
                          std::string(read.data()) == sample_bytes;
    if (stream) {
        fclose(stream);
    }
    errno = error;
    return is_right;
}

/// Whether `call(&status)` returns the status of the sample.
template <class Status = struct stat, class Call>
bool gives_status(Call call) {
    Status status{};
    return call(&status) == 0 && S_ISREG(status.st_mode) && status.st_size == sample_size;
}

/// Whether `resolved` is the path of the sample in the library. Frees it, unless it is `storage`,
/// and leaves errno unchanged.
inline bool leads_to_the_sample(char* resolved, const char* storage = nullptr) {
    const int error = errno;
    const bool is_right = resolved && std::string(resolved).ends_with("/library/kick.wav");
    if (resolved != storage) {
        free(resolved);
    }
    errno = error;
    return is_right;
}

/// A function that has a shim.
struct Shim {
    const char* name;
    /// Calls the function with a path; returns whether it reached the sample.
    std::function<bool(Path)> has_sample;
};

inline void PrintTo(const Shim& shim, std::ostream* out) {
    *out << shim.name;
}

/// All shims of this system whose function can reach a sample.
const std::vector<Shim>& shims();

/// Adds to the sample what this system's shims look for besides its bytes.
void complete_sample(const fs::path& sample);

class TheShimOf : public testing::TestWithParam<Shim> {
protected:
    void SetUp() override {
        const fs::path sample = folder / "library/kick.wav";
        test::write_file(sample, sample_bytes);
        complete_sample(sample);
        index.add_root((folder / "library").string());
    }

    test::TempFolder folder;
    SampleIndex index;
};

class TheShimsOf : public TheShimOf {};

} // namespace lumo::exs
