// The file functions that have a shim on ELF systems, and what single ones must do besides.
#include "shims.h"

#include <fcntl.h>
#include <limits.h>

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

#ifdef __x86_64__
constexpr int stat_version = 1;
#else
constexpr int stat_version = 0;
#endif

/// Reads a stream after `reopen` opened `path` in it.
bool reads_after(FILE* (*reopen)(const char*, const char*, FILE*), const char* path) {
    FILE* const stream = fopen("/dev/null", "r");
    FILE* const reopened = reopen(path, "r", stream);
    if (!reopened) {
        const int error = errno;
        fclose(stream); // already closed; in glibc this call frees its memory
        errno = error;
    }
    return reads(reopened);
}

bool gives_extended_status(const char* path) {
    struct statx status {};
    return statx(AT_FDCWD, path, 0, STATX_SIZE, &status) == 0 && status.stx_size == sample_size;
}

using Stat64 = struct stat64;

} // namespace

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
        {"stat", [](Path p) { return gives_status([p](auto* s) { return stat(p, s); }); }},
        {"stat64",
         [](Path p) { return gives_status<Stat64>([p](auto* s) { return stat64(p, s); }); }},
        {"lstat", [](Path p) { return gives_status([p](auto* s) { return lstat(p, s); }); }},
        {"lstat64",
         [](Path p) { return gives_status<Stat64>([p](auto* s) { return lstat64(p, s); }); }},
        {"fstatat",
         [](Path p) { return gives_status([p](auto* s) { return fstatat(AT_FDCWD, p, s, 0); }); }},
        {"fstatat64",
         [](Path p) {
             return gives_status<Stat64>([p](auto* s) { return fstatat64(AT_FDCWD, p, s, 0); });
         }},
        {"statx", gives_extended_status},
        {"xstat",
         [](Path p) { return gives_status([p](auto* s) { return __xstat(stat_version, p, s); }); }},
        {"xstat64",
         [](Path p) {
             return gives_status<Stat64>([p](auto* s) { return __xstat64(stat_version, p, s); });
         }},
        {"lxstat",
         [](Path p) {
             return gives_status([p](auto* s) { return __lxstat(stat_version, p, s); });
         }},
        {"lxstat64",
         [](Path p) {
             return gives_status<Stat64>([p](auto* s) { return __lxstat64(stat_version, p, s); });
         }},
        {"fxstatat",
         [](Path p) {
             return gives_status(
                 [p](auto* s) { return __fxstatat(stat_version, AT_FDCWD, p, s, 0); });
         }},
        {"fxstatat64",
         [](Path p) {
             return gives_status<Stat64>(
                 [p](auto* s) { return __fxstatat64(stat_version, AT_FDCWD, p, s, 0); });
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

void complete_sample(const fs::path&) {}

namespace {

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
        EXPECT_EQ(test::read_file(folder / "library/kick.wav"), sample_bytes);
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
