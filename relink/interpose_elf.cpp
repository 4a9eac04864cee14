// Shims with the names of the C library's file functions. This library precedes libc in the search
// order of the process, so calls from the program and from every library arrive here; the real
// function is the next one of that name. A shim makes no decision: it passes the call to redirect
// as a function of the path, and redirect chooses the path.
//
// glibc's fopen, opendir and realpath call internal functions that cannot be interposed, so each
// name has a shim.
#undef _FORTIFY_SOURCE
#undef _FILE_OFFSET_BITS

#include "real_function.h"
#include "redirect.h"

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

namespace lumo::exs::relink {
namespace {

using Open = int(const char*, int, ...);
using OpenChecked = int(const char*, int);
using OpenAt = int(int, const char*, int, ...);
using OpenAtChecked = int(int, const char*, int);
using OpenStream = FILE*(const char*, const char*);
using ReopenStream = FILE*(const char*, const char*, FILE*);
using OpenFolder = DIR*(const char*);
using Stat = int(const char*, struct stat*);
using StatAt = int(int, const char*, struct stat*, int);
using StatX = int(int, const char*, int, unsigned, struct statx*);
using OldStat = int(int, const char*, struct stat*);
using OldStatAt = int(int, int, const char*, struct stat*, int);
using Access = int(const char*, int);
using AccessAt = int(int, const char*, int, int);
using ReadLink = ssize_t(const char*, char*, size_t);
using RealPath = char*(const char*, char*);
using RealPathChecked = char*(const char*, char*, size_t);
using CanonicalName = char*(const char*);

constinit RealFunction<Open> real_open("open");
constinit RealFunction<OpenChecked> real_open_2("__open_2");
constinit RealFunction<OpenAt> real_openat("openat");
constinit RealFunction<OpenAtChecked> real_openat_2("__openat_2");
constinit RealFunction<OpenStream> real_fopen("fopen");
constinit RealFunction<ReopenStream> real_freopen("freopen");
constinit RealFunction<OpenFolder> real_opendir("opendir");
constinit RealFunction<Stat> real_stat("stat");
constinit RealFunction<Stat> real_lstat("lstat");
constinit RealFunction<StatAt> real_fstatat("fstatat");
constinit RealFunction<StatX> real_statx("statx");
constinit RealFunction<OldStat> real_xstat("__xstat");
constinit RealFunction<OldStat> real_lxstat("__lxstat");
constinit RealFunction<OldStatAt> real_fxstatat("__fxstatat");
constinit RealFunction<Access> real_access("access");
constinit RealFunction<AccessAt> real_faccessat("faccessat");
constinit RealFunction<ReadLink> real_readlink("readlink");
constinit RealFunction<RealPath> real_realpath("realpath");
constinit RealFunction<RealPathChecked> real_realpath_chk("__realpath_chk");
constinit RealFunction<CanonicalName> real_canonicalize_file_name("canonicalize_file_name");

} // namespace

bool can_access(const char* path, int mode) {
    return real_access(path, mode) == 0;
}

bool is_link(const char* path) {
    char text = 0;
    return real_readlink(path, &text, sizeof text) != -1;
}

std::string real_path(const char* path) {
    char resolved[PATH_MAX];
    return real_realpath(path, resolved) ? resolved : "";
}

} // namespace lumo::exs::relink

using namespace lumo::exs::relink;

// NOLINTBEGIN(bugprone-reserved-identifier): the names are the C library's own.
#pragma GCC visibility push(default)
extern "C" {

int open(const char* path, int flags, ...) {
    const int mode = LUMO_OPEN_MODE(flags, flags);
    return redirect_open(flags, path, [&](const char* p) { return real_open(p, flags, mode); });
}

int __open_2(const char* path, int flags) {
    return redirect_open(flags, path, [&](const char* p) { return real_open_2(p, flags); });
}

int openat(int folder, const char* path, int flags, ...) {
    const int mode = LUMO_OPEN_MODE(flags, flags);
    return redirect_open_at(flags, folder, path,
                            [&](int f, const char* p) { return real_openat(f, p, flags, mode); });
}

int __openat_2(int folder, const char* path, int flags) {
    return redirect_open_at(flags, folder, path,
                            [&](int f, const char* p) { return real_openat_2(f, p, flags); });
}

FILE* fopen(const char* path, const char* mode) {
    return redirect_open(mode, path, [&](const char* p) { return real_fopen(p, mode); });
}

/// freopen closes its stream even when it fails, so the path is chosen first and freopen is called
/// once.
FILE* freopen(const char* path, const char* mode, FILE* stream) {
    if (!session::is_open() || !path || !only_reads(mode)) {
        return real_freopen(path, mode, stream);
    }
    std::string chosen = path;
    redirect(path, [&](const char* p) {
        const int result = real_access(p, F_OK);
        if (result == 0) {
            chosen = p;
        }
        return result;
    });
    return real_freopen(chosen.c_str(), mode, stream);
}

DIR* opendir(const char* path) {
    return redirect(path, [](const char* p) { return real_opendir(p); });
}

int stat(const char* path, struct stat* status) noexcept {
    return redirect(path, [&](const char* p) { return real_stat(p, status); });
}

int lstat(const char* path, struct stat* status) noexcept {
    return redirect(path, [&](const char* p) { return real_lstat(p, status); });
}

int fstatat(int folder, const char* path, struct stat* status, int flags) noexcept {
    return redirect_at(folder, path,
                       [&](int f, const char* p) { return real_fstatat(f, p, status, flags); });
}

int statx(int folder, const char* path, int flags, unsigned mask, struct statx* status) noexcept {
    return redirect_at(folder, path,
                       [&](int f, const char* p) { return real_statx(f, p, flags, mask, status); });
}

// Called by programs that were built with glibc before 2.33.

int __xstat(int version, const char* path, struct stat* status) {
    return redirect(path, [&](const char* p) { return real_xstat(version, p, status); });
}

int __lxstat(int version, const char* path, struct stat* status) {
    return redirect(path, [&](const char* p) { return real_lxstat(version, p, status); });
}

int __fxstatat(int version, int folder, const char* path, struct stat* status, int flags) {
    return redirect_at(folder, path, [&](int f, const char* p) {
        return real_fxstatat(version, f, p, status, flags);
    });
}

int access(const char* path, int mode) noexcept {
    return redirect(path, [&](const char* p) { return real_access(p, mode); });
}

int faccessat(int folder, const char* path, int mode, int flags) noexcept {
    return redirect_at(folder, path,
                       [&](int f, const char* p) { return real_faccessat(f, p, mode, flags); });
}

ssize_t readlink(const char* path, char* text, size_t size) noexcept {
    return redirect(path, [&](const char* p) { return real_readlink(p, text, size); });
}

char* realpath(const char* path, char* resolved) noexcept {
    return redirect(path, [&](const char* p) { return real_realpath(p, resolved); });
}

char* __realpath_chk(const char* path, char* resolved, size_t size) noexcept {
    return redirect(path, [&](const char* p) { return real_realpath_chk(p, resolved, size); });
}

char* canonicalize_file_name(const char* path) noexcept {
    return redirect(path, [](const char* p) { return real_canonicalize_file_name(p); });
}

// off_t has 64 bits, so the variants with 64 in their names are the same functions.
static_assert(sizeof(off_t) == sizeof(off64_t) && sizeof(struct stat) == sizeof(struct stat64));

[[gnu::alias("open")]] int open64(const char*, int, ...);
[[gnu::alias("__open_2")]] int __open64_2(const char*, int);
[[gnu::alias("openat")]] int openat64(int, const char*, int, ...);
[[gnu::alias("__openat_2")]] int __openat64_2(int, const char*, int);
[[gnu::alias("fopen")]] FILE* fopen64(const char*, const char*);
[[gnu::alias("freopen")]] FILE* freopen64(const char*, const char*, FILE*);
[[gnu::alias("stat")]] int stat64(const char*, struct stat64*) noexcept;
[[gnu::alias("lstat")]] int lstat64(const char*, struct stat64*) noexcept;
[[gnu::alias("fstatat")]] int fstatat64(int, const char*, struct stat64*, int) noexcept;
[[gnu::alias("__xstat")]] int __xstat64(int, const char*, struct stat64*);
[[gnu::alias("__lxstat")]] int __lxstat64(int, const char*, struct stat64*);
[[gnu::alias("__fxstatat")]] int __fxstatat64(int, int, const char*, struct stat64*, int);

} // extern "C"
#pragma GCC visibility pop
// NOLINTEND(bugprone-reserved-identifier)
