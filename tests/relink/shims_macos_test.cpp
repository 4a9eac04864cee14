// One test for each file function in the interpose section: it reaches an indexed file for a sample
// that is not at its recorded path. Without a tuple, the test with its name fails.
#include "support/temp_folder.h"
#include <lumo/relink.h>

#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/attr.h>
#include <sys/clonefile.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

// Declared as in relink/interpose_macos.cpp.
extern "C" {
int open_nocancel(const char*, int, ...) __asm("_open$NOCANCEL");
int openat_nocancel(int, const char*, int, ...) __asm("_openat$NOCANCEL");
FILE* fopen_plain(const char*, const char*) __asm("_fopen");
FILE* fopen_extended(const char*, const char*) __asm("_fopen$DARWIN_EXTSN");
char* realpath_plain(const char*, char*) __asm("_realpath");
char* realpath_extended(const char*, char*) __asm("_realpath$DARWIN_EXTSN");
int stat_64(const char*, void*) __asm("_stat64");
int lstat_64(const char*, void*) __asm("_lstat64");
int open_dprotected_np(const char*, int, int, int, ...);
int openat_dprotected_np(int, const char*, int, int, int, ...);
int guarded_open_np(const char*, const void*, unsigned, int, ...);
int guarded_open_dprotected_np(const char*, const void*, unsigned, int, int, int, ...);
ssize_t getxattr(const char*, const char*, void*, size_t, uint32_t, int);
ssize_t listxattr(const char*, char*, size_t, int);
int setxattr(const char*, const char*, const void*, size_t, uint32_t, int);
}

namespace lumo::exs {
namespace {
namespace fs = std::filesystem;

constexpr const char* bytes = "the sound of a kick";
constexpr off_t size = 19;
constexpr int untouched = 77; ///< an error number that no call here sets
const unsigned long guard = 0x6c756d6f;
constexpr unsigned guarded_dup = 2;

/// Whether the sample can be read from the descriptor. Closes it and leaves errno unchanged.
bool reads(int file) {
    const int error = errno;
    std::array<char, 64> read{};
    const bool is_right = file >= 0 && ::read(file, read.data(), read.size()) == size &&
                          std::string(read.data()) == bytes;
    if (file >= 0) {
        close(file);
    }
    errno = error;
    return is_right;
}

bool reads(FILE* stream) {
    const int error = errno;
    std::array<char, 64> read{};
    const bool is_right =
        stream && fgets(read.data(), read.size(), stream) && std::string(read.data()) == bytes;
    if (stream) {
        fclose(stream);
    }
    errno = error;
    return is_right;
}

/// Whether `call(&status)` returns the status of the sample.
bool gives_status(const std::function<int(struct stat*)>& call) {
    struct stat status {};
    return call(&status) == 0 && S_ISREG(status.st_mode) && status.st_size == size;
}

/// Whether `resolved` is the path of the sample in the library. Frees it; errno is unchanged.
bool leads_to_the_sample(char* resolved) {
    const int error = errno;
    const bool is_right = resolved && std::string(resolved).ends_with("/library/kick.wav");
    free(resolved);
    errno = error;
    return is_right;
}

/// Calls accessx_np with three descriptors: the second shares the text of the first, the third is
/// the path of the root folder, which always exists.
bool is_accessible(const char* path) {
    struct {
        accessx_descriptor paths[3];
        char texts[2048];
    } list{};
    std::snprintf(list.texts, sizeof list.texts, "%s%c/", path, '\0');
    list.paths[0] = {sizeof list.paths, F_OK, {}};
    list.paths[1] = {0, R_OK, {}};
    list.paths[2] = {static_cast<unsigned>(sizeof list.paths + std::strlen(path) + 1), F_OK, {}};
    int errors[3] = {-1, -1, -1};
    const int result = accessx_np(list.paths, sizeof list, errors, getuid());
    EXPECT_EQ(result, 0);
    EXPECT_EQ(errors[2], 0);
    EXPECT_EQ(errors[0], errors[1]);
    if (errors[0] != 0) {
        errno = errors[0];
    }
    return result == 0 && errors[0] == 0;
}

/// Clones the file at `path` into the test's folder and removes the clone.
bool clones(const char* path) {
    const std::string copy = fs::path(path).parent_path().parent_path() / "copy.wav";
    const bool is_cloned = clonefile(path, copy.c_str(), 0) == 0;
    const int error = errno;
    const bool is_right = is_cloned && fs::file_size(copy) == size;
    fs::remove(copy);
    errno = error;
    return is_right;
}

using Path = const char*;

struct Shim {
    const char* name;
    /// Calls the function with a path; returns whether it reached the sample.
    std::function<bool(Path)> has_sample;
};

void PrintTo(const Shim& shim, std::ostream* out) {
    *out << shim.name;
}

attrlist no_attributes() {
    return {ATTR_BIT_MAP_COUNT, 0, 0, 0, 0, 0, 0};
}

const std::vector<Shim>& shims() {
    static const std::vector<Shim> all{
        {"open", [](Path p) { return reads(open(p, O_RDONLY)); }},
        {"open_nocancel", [](Path p) { return reads(open_nocancel(p, O_RDONLY | O_CLOEXEC)); }},
        {"openat", [](Path p) { return reads(openat(AT_FDCWD, p, O_RDONLY)); }},
        {"openat_with_a_folder", [](Path p) { return reads(openat(0, p, O_RDONLY)); }},
        {"openat_nocancel", [](Path p) { return reads(openat_nocancel(AT_FDCWD, p, O_RDONLY)); }},
        {"open_dprotected_np", [](Path p) { return reads(open_dprotected_np(p, O_RDONLY, 0, 0)); }},
        {"openat_dprotected_np",
         [](Path p) { return reads(openat_dprotected_np(AT_FDCWD, p, O_RDONLY, 0, 0)); }},
        {"guarded_open_np",
         [](Path p) {
             return reads(guarded_open_np(p, &guard, guarded_dup, O_RDONLY | O_CLOEXEC));
         }},
        {"guarded_open_dprotected_np",
         [](Path p) {
             return reads(
                 guarded_open_dprotected_np(p, &guard, guarded_dup, O_RDONLY | O_CLOEXEC, 0, 0));
         }},
        {"stat", [](Path p) { return gives_status([p](auto* s) { return stat(p, s); }); }},
        {"stat64", [](Path p) { return gives_status([p](auto* s) { return stat_64(p, s); }); }},
        {"lstat", [](Path p) { return gives_status([p](auto* s) { return lstat(p, s); }); }},
        {"lstat64", [](Path p) { return gives_status([p](auto* s) { return lstat_64(p, s); }); }},
        {"fstatat",
         [](Path p) { return gives_status([p](auto* s) { return fstatat(AT_FDCWD, p, s, 0); }); }},
        {"statfs",
         [](Path p) {
             struct statfs status {};
             return statfs(p, &status) == 0 && status.f_bsize != 0;
         }},
        {"access", [](Path p) { return access(p, R_OK) == 0; }},
        {"faccessat", [](Path p) { return faccessat(AT_FDCWD, p, R_OK, 0) == 0; }},
        {"accessx_np", is_accessible},
        {"getattrlist",
         [](Path p) {
             attrlist wanted = no_attributes();
             std::uint32_t length = 0;
             return getattrlist(p, &wanted, &length, sizeof length, 0) == 0 && length == 4;
         }},
        {"getattrlistat",
         [](Path p) {
             attrlist wanted = no_attributes();
             std::uint32_t length = 0;
             return getattrlistat(AT_FDCWD, p, &wanted, &length, sizeof length, 0) == 0 &&
                    length == 4;
         }},
        {"getxattr", // on a file system with extended attributes
         [](Path p) {
             char value = 0;
             return getxattr(p, "lumo", &value, 1, 0, 0) == 1 && value == 'v';
         }},
        {"listxattr", [](Path p) { return listxattr(p, nullptr, 0, 0) >= 0; }},
        {"pathconf", [](Path p) { return pathconf(p, _PC_NAME_MAX) == 255; }},
        {"clonefile", clones},
        {"fopen", [](Path p) { return reads(fopen_plain(p, "r")); }},
        {"fopen_extended", [](Path p) { return reads(fopen_extended(p, "rb")); }},
        {"realpath", [](Path p) { return leads_to_the_sample(realpath_plain(p, nullptr)); }},
        {"realpath_extended",
         [](Path p) { return leads_to_the_sample(realpath_extended(p, nullptr)); }},
    };
    return all;
}

class TheShimOf : public testing::TestWithParam<Shim> {
protected:
    void SetUp() override {
        const fs::path sample = folder / "library/kick.wav";
        test::write_file(sample, bytes);
        ASSERT_EQ(setxattr(sample.c_str(), "lumo", "v", 1, 0, 0), 0)
            << "extended attributes are needed where temporary files are";
        index.add_root((folder / "library").string());
    }

    test::TempFolder folder;
    SampleIndex index;
};

TEST_P(TheShimOf, ReachesTheIndexedFile) {
    const std::string gone = (folder / "gone/kick.wav").string();
    relink::begin(index);
    errno = untouched;
    const bool has_sample = GetParam().has_sample(gone.c_str());
    const int error = errno;
    const relink::Result result = relink::end();
    EXPECT_TRUE(has_sample);
    EXPECT_EQ(error, untouched);
    ASSERT_EQ(result.relinked.size(), 1u);
    EXPECT_EQ(result.relinked[0].first, gone);
    EXPECT_EQ(result.relinked[0].second, (folder / "library/kick.wav").string());
}

TEST_P(TheShimOf, RecordsASampleThatIsNowhere) {
    const std::string gone = (folder / "gone/tom.wav").string();
    relink::begin(index);
    const bool has_sample = GetParam().has_sample(gone.c_str());
    const int error = errno;
    const relink::Result result = relink::end();
    EXPECT_FALSE(has_sample);
    EXPECT_EQ(error, ENOENT);
    EXPECT_EQ(result.unresolved, std::vector<std::string>{gone});
}

TEST_P(TheShimOf, LeavesASampleThatIsThere) {
    relink::begin(index);
    const bool has_sample = GetParam().has_sample((folder / "library/kick.wav").c_str());
    const relink::Result result = relink::end();
    EXPECT_TRUE(has_sample);
    EXPECT_TRUE(result.relinked.empty() && result.unresolved.empty());
}

TEST_P(TheShimOf, DoesNothingWithoutASession) {
    EXPECT_TRUE(GetParam().has_sample((folder / "library/kick.wav").c_str()));
    EXPECT_FALSE(GetParam().has_sample((folder / "gone/kick.wav").c_str()));
    EXPECT_EQ(errno, ENOENT);
}

TEST_P(TheShimOf, PassesOverWhatIsNoSample) {
    relink::begin(index);
    EXPECT_FALSE(GetParam().has_sample((folder / "gone/kick.txt").c_str()));
    const relink::Result result = relink::end();
    EXPECT_TRUE(result.relinked.empty() && result.unresolved.empty());
}

TEST_P(TheShimOf, IsUsedByManyThreads) {
    if (std::string(GetParam().name) == "clonefile") {
        return; // all threads would make the same file; its shim calls redirect, as all shims do
    }
    relink::begin(index);
    std::vector<std::thread> threads;
    std::array<int, 8> found{};
    for (std::size_t i = 0; i < found.size(); ++i) {
        threads.emplace_back([&, i] {
            for (int n = 0; n < 20; ++n) {
                const std::string name = "gone" + std::to_string(n) + "/kick.wav";
                found[i] += GetParam().has_sample((folder / name).c_str());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const relink::Result result = relink::end();
    for (const int count : found) {
        EXPECT_EQ(count, 20);
    }
    EXPECT_EQ(result.relinked.size(), 20u);
}

INSTANTIATE_TEST_SUITE_P(Function, TheShimOf, testing::ValuesIn(shims()),
                         [](const auto& test) { return test.param.name; });

/// A function that returns a file's status, and the file type that it reports for a link to a file.
struct StatusShim {
    const char* name;
    mode_t kind;
    std::function<int(Path, struct stat*)> call;
};

void PrintTo(const StatusShim& shim, std::ostream* out) {
    *out << shim.name;
}

class TheStatusShimOf : public testing::TestWithParam<StatusShim> {};

TEST_P(TheStatusShimOf, SeesALinkAsItsFunctionDoes) {
    const test::TempFolder folder;
    test::write_file(folder / "kick.wav", bytes);
    fs::create_directory(folder / "links");
    fs::create_symlink(folder / "kick.wav", folder / "links/snare.wav");
    SampleIndex index;
    index.add_root((folder / "links").string());
    struct stat status {};
    relink::begin(index);
    EXPECT_EQ(GetParam().call((folder / "gone/snare.wav").c_str(), &status), 0);
    relink::end();
    EXPECT_EQ(status.st_mode & S_IFMT, GetParam().kind);
}

INSTANTIATE_TEST_SUITE_P(
    Function, TheStatusShimOf,
    testing::Values(
        StatusShim{"stat", S_IFREG, [](Path p, auto* s) { return stat(p, s); }},
        StatusShim{"stat64", S_IFREG, [](Path p, auto* s) { return stat_64(p, s); }},
        StatusShim{"lstat", S_IFLNK, [](Path p, auto* s) { return lstat(p, s); }},
        StatusShim{"lstat64", S_IFLNK, [](Path p, auto* s) { return lstat_64(p, s); }},
        StatusShim{"fstatat", S_IFREG, [](Path p, auto* s) { return fstatat(AT_FDCWD, p, s, 0); }},
        StatusShim{"fstatat_of_the_link", S_IFLNK,
                   [](Path p, auto* s) { return fstatat(AT_FDCWD, p, s, AT_SYMLINK_NOFOLLOW); }}),
    [](const auto& test) { return test.param.name; });

class TheShimsOf : public TheShimOf {};

TEST_F(TheShimsOf, OpenPassTheModeOn) {
    umask(0);
    relink::begin(index);
    const auto mode_after = [&](const std::function<int(Path)>& create) {
        const fs::path path = folder / "new.wav";
        fs::remove(path);
        const int file = create(path.c_str());
        struct stat status {};
        EXPECT_EQ(fstat(file, &status), 0);
        close(file);
        return status.st_mode & 07777;
    };
    constexpr int create = O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC;
    EXPECT_EQ(mode_after([](Path p) { return open(p, create, 0641); }), 0641);
    EXPECT_EQ(mode_after([](Path p) { return open_nocancel(p, create, 0642); }), 0642);
    EXPECT_EQ(mode_after([](Path p) { return openat(AT_FDCWD, p, create, 0643); }), 0643);
    EXPECT_EQ(mode_after([](Path p) { return openat_nocancel(AT_FDCWD, p, create, 0644); }), 0644);
    EXPECT_EQ(mode_after([](Path p) { return open_dprotected_np(p, create, 0, 0, 0645); }), 0645);
    EXPECT_EQ(
        mode_after([](Path p) { return openat_dprotected_np(AT_FDCWD, p, create, 0, 0, 0646); }),
        0646);
    EXPECT_EQ(
        mode_after([](Path p) { return guarded_open_np(p, &guard, guarded_dup, create, 0647); }),
        0647);
    EXPECT_EQ(mode_after([](Path p) {
                  return guarded_open_dprotected_np(p, &guard, guarded_dup, create, 0, 0, 0651);
              }),
              0651);
    relink::end();
}

TEST_F(TheShimsOf, ReadlinkGivesTheTextOfAnIndexedLink) {
    const test::TempFolder links;
    fs::create_symlink(folder / "library/kick.wav", links / "snare.wav");
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

// The library resolves the link itself; its calls arrive at its own shims.
TEST_F(TheShimsOf, AllLeaveALinkThatIsThere) {
    const std::string link = (folder / "links/snare.wav").string();
    fs::create_directory(folder / "links");
    fs::create_symlink(folder / "library/kick.wav", link);
    relink::begin(index);
    for (const Shim& shim : shims()) {
        EXPECT_NO_THROW(shim.has_sample(link.c_str())) << shim.name;
    }
    const relink::Result result = relink::end();
    EXPECT_TRUE(result.relinked.empty() && result.unresolved.empty());
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

TEST_F(TheShimsOf, AtFunctionsTakePathsOfTheCurrentFolderAndOfAnother) {
    const fs::path before = fs::current_path();
    fs::current_path(folder.path());
    const int library = open("library", O_RDONLY | O_DIRECTORY);
    relink::begin(index);
    for (const auto& [place, path] :
         {std::pair(AT_FDCWD, "library/kick.wav"), std::pair(library, "kick.wav")}) {
        attrlist wanted = no_attributes();
        std::uint32_t length = 0;
        EXPECT_TRUE(reads(openat(place, path, O_RDONLY)));
        EXPECT_TRUE(reads(openat_nocancel(place, path, O_RDONLY)));
        EXPECT_TRUE(reads(openat_dprotected_np(place, path, O_RDONLY, 0, 0)));
        EXPECT_TRUE(gives_status([&](auto* s) { return fstatat(place, path, s, 0); }));
        EXPECT_EQ(faccessat(place, path, R_OK, 0), 0);
        EXPECT_EQ(getattrlistat(place, path, &wanted, &length, sizeof length, 0), 0);
    }
    relink::end();
    close(library);
    fs::current_path(before);
}

TEST_F(TheShimsOf, PathconfLeavesErrnoWhereThereIsNoLimit) {
    relink::begin(index);
    errno = untouched;
    EXPECT_GE(pathconf((folder / "library/kick.wav").c_str(), _PC_LINK_MAX), -1);
    EXPECT_EQ(errno, untouched);
    relink::end();
}

} // namespace
} // namespace lumo::exs
