// One test for each file function that has a shim: it reaches an indexed file for a sample that is
// not at its recorded path. Without a shim, the test with its name fails.
#undef _FORTIFY_SOURCE // it would replace the functions named below by others

#include "support/temp_folder.h"
#include <lumo/relink.h>

#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <functional>
#include <ostream>

// Called by fortified programs and by programs built with an older glibc; no header declares them.
// NOLINTBEGIN(bugprone-reserved-identifier): the names are glibc's
extern "C" {
int __open_2(const char* path, int flags);
int __open64_2(const char* path, int flags);
int __openat_2(int folder, const char* path, int flags);
int __openat64_2(int folder, const char* path, int flags);
int __xstat(int version, const char* path, struct stat* status);
int __xstat64(int version, const char* path, struct stat64* status);
int __lxstat(int version, const char* path, struct stat* status);
int __lxstat64(int version, const char* path, struct stat64* status);
int __fxstatat(int version, int folder, const char* path, struct stat* status, int flags);
int __fxstatat64(int version, int folder, const char* path, struct stat64* status, int flags);
char* __realpath_chk(const char* path, char* resolved, size_t size);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace lumo::exs {
namespace {

constexpr const char* bytes = "the sound of a kick";
constexpr off_t size = 19;
#ifdef __x86_64__
constexpr int stat_version = 1;
#else
constexpr int stat_version = 0;
#endif

bool reads(int file) {
    std::array<char, 64> read{};
    const bool is_right = file >= 0 && ::read(file, read.data(), read.size()) == size &&
                          std::string(read.data()) == bytes;
    if (file >= 0) {
        close(file);
    }
    return is_right;
}

bool reads(FILE* stream) {
    std::array<char, 64> read{};
    const bool is_right =
        stream && fgets(read.data(), read.size(), stream) && std::string(read.data()) == bytes;
    if (stream) {
        fclose(stream);
    }
    return is_right;
}

/// Reads a stream after `reopen` opened `path` in it.
bool reads_after(FILE* (*reopen)(const char*, const char*, FILE*), const char* path) {
    FILE* const stream = fopen("/dev/null", "r");
    FILE* const reopened = reopen(path, "r", stream);
    if (!reopened) {
        fclose(stream); // already closed; in glibc this call frees its memory
    }
    return reads(reopened);
}

/// Whether `call(&status)` returns the status of the sample.
template <class Status>
bool tells(const std::function<int(Status*)>& call) {
    Status status{};
    return call(&status) == 0 && S_ISREG(status.st_mode) && status.st_size == size;
}

bool tells_extended(const char* path) {
    struct statx status {};
    return statx(AT_FDCWD, path, 0, STATX_SIZE, &status) == 0 && status.stx_size == size;
}

/// Whether `resolved` is the path of the sample in the library. Frees it unless it is `storage`.
bool leads_to_the_sample(char* resolved, const char* storage = nullptr) {
    const bool is_right = resolved && std::string(resolved).ends_with("/library/kick.wav");
    if (resolved != storage) {
        free(resolved);
    }
    return is_right;
}

using Stat = struct stat;
using Stat64 = struct stat64;
using Path = const char*;

struct Shim {
    const char* name;
    /// Calls the function with a path; returns whether it reached the sample.
    std::function<bool(Path)> has_sample;
};

void PrintTo(const Shim& shim, std::ostream* out) {
    *out << shim.name;
}

const std::vector<Shim>& shims() {
    static const std::vector<Shim> all{
        {"open", [](Path p) { return reads(open(p, O_RDONLY)); }},
        {"open64", [](Path p) { return reads(open64(p, O_RDONLY | O_CLOEXEC)); }},
        {"open_2", [](Path p) { return reads(__open_2(p, O_RDONLY)); }},
        {"open64_2", [](Path p) { return reads(__open64_2(p, O_RDONLY)); }},
        {"openat", [](Path p) { return reads(openat(AT_FDCWD, p, O_RDONLY)); }},
        {"openat64", [](Path p) { return reads(openat64(AT_FDCWD, p, O_RDONLY)); }},
        {"openat_2", [](Path p) { return reads(__openat_2(AT_FDCWD, p, O_RDONLY)); }},
        {"openat64_2", [](Path p) { return reads(__openat64_2(AT_FDCWD, p, O_RDONLY)); }},
        {"fopen", [](Path p) { return reads(fopen(p, "r")); }},
        {"fopen64", [](Path p) { return reads(fopen64(p, "rb")); }},
        {"freopen", [](Path p) { return reads_after(freopen, p); }},
        {"freopen64", [](Path p) { return reads_after(freopen64, p); }},
        {"stat", [](Path p) { return tells<Stat>([p](Stat* s) { return stat(p, s); }); }},
        {"stat64", [](Path p) { return tells<Stat64>([p](Stat64* s) { return stat64(p, s); }); }},
        {"lstat", [](Path p) { return tells<Stat>([p](Stat* s) { return lstat(p, s); }); }},
        {"lstat64", [](Path p) { return tells<Stat64>([p](Stat64* s) { return lstat64(p, s); }); }},
        {"fstatat",
         [](Path p) { return tells<Stat>([p](Stat* s) { return fstatat(AT_FDCWD, p, s, 0); }); }},
        {"fstatat64",
         [](Path p) {
             return tells<Stat64>([p](Stat64* s) { return fstatat64(AT_FDCWD, p, s, 0); });
         }},
        {"statx", tells_extended},
        {"xstat",
         [](Path p) { return tells<Stat>([p](Stat* s) { return __xstat(stat_version, p, s); }); }},
        {"xstat64",
         [](Path p) {
             return tells<Stat64>([p](Stat64* s) { return __xstat64(stat_version, p, s); });
         }},
        {"lxstat",
         [](Path p) { return tells<Stat>([p](Stat* s) { return __lxstat(stat_version, p, s); }); }},
        {"lxstat64",
         [](Path p) {
             return tells<Stat64>([p](Stat64* s) { return __lxstat64(stat_version, p, s); });
         }},
        {"fxstatat",
         [](Path p) {
             return tells<Stat>(
                 [p](Stat* s) { return __fxstatat(stat_version, AT_FDCWD, p, s, 0); });
         }},
        {"fxstatat64",
         [](Path p) {
             return tells<Stat64>(
                 [p](Stat64* s) { return __fxstatat64(stat_version, AT_FDCWD, p, s, 0); });
         }},
        {"access", [](Path p) { return access(p, R_OK) == 0; }},
        {"faccessat", [](Path p) { return faccessat(AT_FDCWD, p, R_OK, 0) == 0; }},
        {"realpath", [](Path p) { return leads_to_the_sample(realpath(p, nullptr)); }},
        {"realpath_chk",
         [](Path p) {
             std::array<char, PATH_MAX> storage{};
             return leads_to_the_sample(__realpath_chk(p, storage.data(), storage.size()),
                                        storage.data());
         }},
        {"canonicalize_file_name",
         [](Path p) { return leads_to_the_sample(canonicalize_file_name(p)); }},
    };
    return all;
}

class TheShimOf : public testing::TestWithParam<Shim> {
protected:
    void SetUp() override {
        test::write_file(folder / "library/kick.wav", bytes);
        index.add_root((folder / "library").string());
    }

    test::TempFolder folder;
    SampleIndex index;
};

TEST_P(TheShimOf, ReachesTheIndexedFile) {
    const std::string gone = (folder / "gone/kick.wav").string();
    relink::begin(index);
    const bool has_sample = GetParam().has_sample(gone.c_str());
    const relink::Result result = relink::end();
    EXPECT_TRUE(has_sample);
    ASSERT_EQ(result.relinked.size(), 1u);
    EXPECT_EQ(result.relinked[0].first, gone);
    EXPECT_EQ(result.relinked[0].second, (folder / "library/kick.wav").string());
}

TEST_P(TheShimOf, RecordsASampleThatIsNowhere) {
    const std::string gone = (folder / "gone/tom.wav").string();
    relink::begin(index);
    const bool has_sample = GetParam().has_sample(gone.c_str());
    const relink::Result result = relink::end();
    EXPECT_FALSE(has_sample);
    EXPECT_EQ(result.unresolved, std::vector<std::string>{gone});
}

TEST_P(TheShimOf, DoesNothingWithoutASession) {
    EXPECT_TRUE(GetParam().has_sample((folder / "library/kick.wav").c_str()));
    EXPECT_FALSE(GetParam().has_sample((folder / "gone/kick.wav").c_str()));
}

INSTANTIATE_TEST_SUITE_P(Function, TheShimOf, testing::ValuesIn(shims()),
                         [](const auto& test) { return test.param.name; });

class TheShimsOf : public TheShimOf {};

TEST_F(TheShimsOf, ReadlinkGivesTheTextOfAnIndexedLink) {
    test::TempFolder links;
    std::filesystem::create_symlink(folder / "library/kick.wav", links / "snare.wav");
    index.add_root(links.path().string());
    std::array<char, PATH_MAX> text{};
    relink::begin(index);
    const ssize_t length =
        readlink((folder / "gone/snare.wav").c_str(), text.data(), text.size() - 1);
    const relink::Result result = relink::end();
    EXPECT_GT(length, 0);
    EXPECT_EQ(std::string(text.data()), (folder / "library/kick.wav").string());
    EXPECT_EQ(result.relinked.size(), 1u);
}

TEST_F(TheShimsOf, OpendirRecordsTheSampleAndOpensNoFileAsAFolder) {
    const std::string gone = (folder / "gone/kick.wav").string();
    relink::begin(index);
    DIR* const opened = opendir(gone.c_str());
    const int error = errno;
    const relink::Result result = relink::end();
    EXPECT_EQ(opened, nullptr);
    EXPECT_EQ(error, ENOTDIR);
    ASSERT_EQ(result.relinked.size(), 1u);
    EXPECT_EQ(result.relinked[0].first, gone);
}

using Reopen = FILE*(const char*, const char*, FILE*);

TEST_F(TheShimsOf, FreopenForWritingMakesTheFileThatItsCallerNames) {
    for (Reopen* const reopen : {freopen, freopen64}) {
        const std::string made = (folder / "kick.wav").string();
        FILE* const stream = fopen("/dev/null", "r");
        relink::begin(index);
        FILE* const reopened = reopen(made.c_str(), "w", stream);
        const relink::Result result = relink::end();
        ASSERT_TRUE(reopened);
        fputs("new", reopened);
        fclose(reopened);
        EXPECT_EQ(test::read_file(made), "new");
        EXPECT_EQ(test::read_file(folder / "library/kick.wav"), bytes);
        EXPECT_TRUE(result.relinked.empty());
        std::filesystem::remove(made);
    }
}

TEST_F(TheShimsOf, FreopenWithoutAPathOpensTheStreamsOwnFileAgain) {
    for (Reopen* const reopen : {freopen, freopen64}) {
        FILE* const stream = fopen((folder / "library/kick.wav").c_str(), "r");
        relink::begin(index);
        FILE* const reopened = reopen(nullptr, "r", stream);
        relink::end();
        EXPECT_TRUE(reads(reopened));
    }
}

TEST_F(TheShimsOf, OpenMakesANamelessFileWithTheCallersMode) {
    const std::string path = folder.path().string();
    constexpr int flags = O_TMPFILE | O_WRONLY;
    umask(022);
    for (const int file : {open(path.c_str(), flags, 0751), open64(path.c_str(), flags, 0751),
                           openat(AT_FDCWD, path.c_str(), flags, 0751),
                           openat64(AT_FDCWD, path.c_str(), flags, 0751)}) {
        if (file < 0 && errno == EOPNOTSUPP) {
            GTEST_SKIP() << "no nameless files in the temporary folder";
        }
        struct stat status {};
        EXPECT_EQ(fstat(file, &status), 0);
        close(file);
        EXPECT_EQ(status.st_mode & 0777u, 0751u);
    }
}

} // namespace
} // namespace lumo::exs
