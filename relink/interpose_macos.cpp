// Replacements for the system's file functions on a Mac. When the process starts, the loader reads
// the pairs in the section __interpose and binds each call of the original, from every image but
// this one, to the replacement; calls from this library reach the original. A replacement makes no
// decision: it passes the call to redirect as a function of the path, and redirect chooses the
// path.
//
// The calls that libsystem_c makes inside fopen, opendir and realpath reach the system call
// functions, so these must be interposed; interposing the three as well is a second safeguard.
//
// Variants whose names end in $NOCANCEL and $DARWIN_EXTSN cannot be named in C and are declared
// here with a C name; the compiler appends $INODE64 where the processor has that variant. Functions
// that no header declares, or that some supported systems lack, are imported weakly: the loader
// skips the pair of a missing function.
#include "redirect.h"

#include <dirent.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/attr.h>
#include <sys/clonefile.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

extern "C" {
int open_nocancel(const char*, int, ...) __asm("_open$NOCANCEL");
int openat_nocancel(int, const char*, int, ...) __asm("_openat$NOCANCEL");
FILE* fopen_plain(const char*, const char*) __asm("_fopen");
FILE* fopen_extended(const char*, const char*) __asm("_fopen$DARWIN_EXTSN");
char* realpath_plain(const char*, char*) __asm("_realpath");
char* realpath_extended(const char*, char*) __asm("_realpath$DARWIN_EXTSN");

// Declared in sys/xattr.h, which some sets of macOS headers lack.
ssize_t getxattr(const char*, const char*, void*, size_t, uint32_t, int);
ssize_t listxattr(const char*, char*, size_t, int);

int stat_64(const char*, void*) __asm("_stat64") __attribute__((weak_import));
int lstat_64(const char*, void*) __asm("_lstat64") __attribute__((weak_import));
int open_dprotected_np(const char*, int, int, int, ...) __attribute__((weak_import));
int openat_dprotected_np(int, const char*, int, int, int, ...) __attribute__((weak_import));
int guarded_open_np(const char*, const void*, unsigned, int, ...) __attribute__((weak_import));
int guarded_open_dprotected_np(const char*, const void*, unsigned, int, int, int, ...)
    __attribute__((weak_import));
}

namespace lumo::exs::relink {

bool can_access(const char* path, int mode) {
    return access(path, mode) == 0;
}

bool is_link(const char* path) {
    char text = 0;
    return readlink(path, &text, sizeof text) != -1;
}

std::string real_path(const char* path) {
    char resolved[PATH_MAX];
    return realpath(path, resolved) ? resolved : "";
}

namespace {

int open_shim(const char* path, int flags, ...) {
    const int mode = LUMO_OPEN_MODE(flags, flags);
    return redirect_open(flags, path, [&](const char* p) { return open(p, flags, mode); });
}

int open_nocancel_shim(const char* path, int flags, ...) {
    const int mode = LUMO_OPEN_MODE(flags, flags);
    return redirect_open(flags, path, [&](const char* p) { return open_nocancel(p, flags, mode); });
}

int openat_shim(int folder, const char* path, int flags, ...) {
    const int mode = LUMO_OPEN_MODE(flags, flags);
    return redirect_open_at(flags, folder, path,
                            [&](int f, const char* p) { return openat(f, p, flags, mode); });
}

int openat_nocancel_shim(int folder, const char* path, int flags, ...) {
    const int mode = LUMO_OPEN_MODE(flags, flags);
    return redirect_open_at(flags, folder, path, [&](int f, const char* p) {
        return openat_nocancel(f, p, flags, mode);
    });
}

int open_dprotected_np_shim(const char* path, int flags, int protection, int how, ...) {
    const int mode = LUMO_OPEN_MODE(flags, how);
    return redirect_open(flags, path, [&](const char* p) {
        return open_dprotected_np(p, flags, protection, how, mode);
    });
}

int openat_dprotected_np_shim(int folder, const char* path, int flags, int protection, int how,
                              ...) {
    const int mode = LUMO_OPEN_MODE(flags, how);
    return redirect_open_at(flags, folder, path, [&](int f, const char* p) {
        return openat_dprotected_np(f, p, flags, protection, how, mode);
    });
}

int guarded_open_np_shim(const char* path, const void* guard, unsigned guarded, int flags, ...) {
    const int mode = LUMO_OPEN_MODE(flags, flags);
    return redirect_open(flags, path, [&](const char* p) {
        return guarded_open_np(p, guard, guarded, flags, mode);
    });
}

int guarded_open_dprotected_np_shim(const char* path, const void* guard, unsigned guarded,
                                    int flags, int protection, int how, ...) {
    const int mode = LUMO_OPEN_MODE(flags, how);
    return redirect_open(flags, path, [&](const char* p) {
        return guarded_open_dprotected_np(p, guard, guarded, flags, protection, how, mode);
    });
}

int stat_shim(const char* path, struct stat* status) {
    return redirect(path, [&](const char* p) { return stat(p, status); });
}

int stat_64_shim(const char* path, void* status) {
    return redirect(path, [&](const char* p) { return stat_64(p, status); });
}

int lstat_shim(const char* path, struct stat* status) {
    return redirect(path, [&](const char* p) { return lstat(p, status); });
}

int lstat_64_shim(const char* path, void* status) {
    return redirect(path, [&](const char* p) { return lstat_64(p, status); });
}

int fstatat_shim(int folder, const char* path, struct stat* status, int flags) {
    return redirect_at(folder, path,
                       [&](int f, const char* p) { return fstatat(f, p, status, flags); });
}

int statfs_shim(const char* path, struct statfs* status) {
    return redirect(path, [&](const char* p) { return statfs(p, status); });
}

int access_shim(const char* path, int mode) {
    return redirect(path, [&](const char* p) { return access(p, mode); });
}

int faccessat_shim(int folder, const char* path, int mode, int flags) {
    return redirect_at(folder, path,
                       [&](int f, const char* p) { return faccessat(f, p, mode, flags); });
}

/// Checks a list of paths in one call and returns an error for each.
int accessx_np_shim(const accessx_descriptor* paths, size_t size, int* errors, uid_t user) {
    const int result = accessx_np(paths, size, errors, user);
    if (result != 0 || !session::is_open()) {
        return result;
    }
    const int before = errno;
    // The paths follow the descriptors; a descriptor without a path of its own uses the previous
    // one.
    const char* path = nullptr;
    for (size_t i = 0; i < paths[0].ad_name_offset / sizeof(accessx_descriptor); ++i) {
        if (paths[i].ad_name_offset != 0) {
            path = reinterpret_cast<const char*>(paths) + paths[i].ad_name_offset;
        }
        const auto judge = [mode = paths[i].ad_flags & (R_OK | W_OK | X_OK)](const char* p) {
            return access(p, mode);
        };
        if (errors[i] != 0 && !is_absence(errors[i], path)) {
            continue;
        }
        const int judged = redirect(path, judge);
        if (errors[i] != 0) {
            errors[i] = judged == 0 ? 0 : errno;
        }
    }
    errno = before;
    return result;
}

int getattrlist_shim(const char* path, void* wanted, void* attributes, size_t size,
                     unsigned options) {
    return redirect(
        path, [&](const char* p) { return getattrlist(p, wanted, attributes, size, options); });
}

int getattrlistat_shim(int folder, const char* path, void* wanted, void* attributes, size_t size,
                       unsigned long options) {
    return redirect_at(folder, path, [&](int f, const char* p) {
        return getattrlistat(f, p, wanted, attributes, size, options);
    });
}

ssize_t getxattr_shim(const char* path, const char* name, void* value, size_t size,
                      uint32_t position, int options) {
    return redirect(
        path, [&](const char* p) { return getxattr(p, name, value, size, position, options); });
}

ssize_t listxattr_shim(const char* path, char* names, size_t size, int options) {
    return redirect(path, [&](const char* p) { return listxattr(p, names, size, options); });
}

/// A negative result with errno unchanged means that there is no limit.
long pathconf_shim(const char* path, int name) {
    const int before = errno;
    errno = 0;
    const long result = redirect(path, [&](const char* p) { return pathconf(p, name); });
    if (errno == 0) {
        errno = before;
    }
    return result;
}

ssize_t readlink_shim(const char* path, char* text, size_t size) {
    return redirect(path, [&](const char* p) { return readlink(p, text, size); });
}

/// clonefile also fails with ENOENT when the folder of `to` is missing, so `from` is looked up only
/// when it does not exist.
int clonefile_shim(const char* from, const char* to, uint32_t flags) {
    const auto clone = [&](const char* p) { return clonefile(p, to, flags); };
    const int before = errno;
    const bool is_wanted = session::is_open() && !can_access(from, F_OK);
    errno = before;
    return is_wanted ? redirect(from, clone) : clone(from);
}

DIR* opendir_shim(const char* path) {
    return redirect(path, [](const char* p) { return opendir(p); });
}

FILE* fopen_plain_shim(const char* path, const char* mode) {
    return redirect_open(mode, path, [&](const char* p) { return fopen_plain(p, mode); });
}

FILE* fopen_extended_shim(const char* path, const char* mode) {
    return redirect_open(mode, path, [&](const char* p) { return fopen_extended(p, mode); });
}

char* realpath_plain_shim(const char* path, char* resolved) {
    return redirect(path, [&](const char* p) { return realpath_plain(p, resolved); });
}

char* realpath_extended_shim(const char* path, char* resolved) {
    return redirect(path, [&](const char* p) { return realpath_extended(p, resolved); });
}

/// An entry of the section __interpose; both functions have the same type.
template <class Function>
struct Pair {
    Function* replacement;
    Function* original;
};

// A macro, because the section attribute requires a named variable.
#define LUMO_INTERPOSE(original)                                                                   \
    __attribute__((used, section("__DATA,__interpose"))) constinit const Pair original##_pair{     \
        original##_shim, ::original};

LUMO_INTERPOSE(open)
LUMO_INTERPOSE(open_nocancel)
LUMO_INTERPOSE(openat)
LUMO_INTERPOSE(openat_nocancel)
LUMO_INTERPOSE(open_dprotected_np)
LUMO_INTERPOSE(openat_dprotected_np)
LUMO_INTERPOSE(guarded_open_np)
LUMO_INTERPOSE(guarded_open_dprotected_np)
LUMO_INTERPOSE(stat)
LUMO_INTERPOSE(stat_64)
LUMO_INTERPOSE(lstat)
LUMO_INTERPOSE(lstat_64)
LUMO_INTERPOSE(fstatat)
LUMO_INTERPOSE(statfs)
LUMO_INTERPOSE(access)
LUMO_INTERPOSE(faccessat)
LUMO_INTERPOSE(accessx_np)
LUMO_INTERPOSE(getattrlist)
LUMO_INTERPOSE(getattrlistat)
LUMO_INTERPOSE(getxattr)
LUMO_INTERPOSE(listxattr)
LUMO_INTERPOSE(pathconf)
LUMO_INTERPOSE(readlink)
LUMO_INTERPOSE(clonefile)
LUMO_INTERPOSE(opendir)
LUMO_INTERPOSE(fopen_plain)
LUMO_INTERPOSE(fopen_extended)
LUMO_INTERPOSE(realpath_plain)
LUMO_INTERPOSE(realpath_extended)

} // namespace
} // namespace lumo::exs::relink
