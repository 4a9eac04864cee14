// The file functions in the interpose section, and what single ones must do besides.
#include "shims.h"

#include <fcntl.h>
#include <sys/attr.h>
#include <sys/clonefile.h>
#include <sys/mount.h>

#include <cstring>
#include <utility>

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

const unsigned long guard = 0x6c756d6f;
constexpr unsigned guarded_dup = 2;

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
    const bool is_right = is_cloned && fs::file_size(copy) == sample_size;
    fs::remove(copy);
    errno = error;
    return is_right;
}

attrlist no_attributes() {
    return {ATTR_BIT_MAP_COUNT, 0, 0, 0, 0, 0, 0};
}

} // namespace

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

void complete_sample(const fs::path& sample) {
    ASSERT_EQ(setxattr(sample.c_str(), "lumo", "v", 1, 0, 0), 0)
        << "extended attributes are needed where temporary files are";
}

namespace {

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
    test::write_file(folder / "kick.wav", sample_bytes);
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
