// Access checks and file attributes.
#include "system/flags.h"
#include "system/system.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace lumo::macos {
namespace {

int mac_access(const char* path, int mode) {
    return done(::access(path, mode));
}

int mac_faccessat(int folder, const char* path, int mode, int flags) {
    return done(::faccessat(folder_of(folder), path, mode, at_flags(flags)));
}

struct AccessDescriptor {
    unsigned name;
    int flags, pad[2];
};

int mac_accessx_np(const AccessDescriptor* paths, size_t, int* errors, uid_t) {
    const char* path = nullptr;
    for (size_t i = 0; i < paths[0].name / sizeof *paths; ++i) {
        path = paths[i].name ? reinterpret_cast<const char*>(paths) + paths[i].name : path;
        errors[i] = ::access(path, paths[i].flags & 7) == 0 ? 0 : mac_error(errno);
    }
    return 0;
}

/// The attributes that a caller of getattrlist asks for.
struct AttributeList {
    std::uint16_t count, reserved;
    std::uint32_t common, volume, folder, file, fork;
};

/// Returns no attributes; fails when the file does not exist.
int give_no_attributes(int folder, const char* path, const AttributeList& wanted, void* attributes,
                       size_t size, unsigned long options) {
    if (const auto any =
            wanted.common | wanted.volume | wanted.folder | wanted.file | wanted.fork) {
        unknown("attributes of getattrlist", static_cast<long>(any));
    }
    if ((options & ~1ul) != 0) {
        unknown("options of getattrlist", static_cast<long>(options));
    }
    struct stat s {};
    const int result = ::fstatat(folder, path, &s, options == 1 ? AT_SYMLINK_NOFOLLOW : 0);
    if (result == 0 && size >= 4) {
        std::memcpy(attributes, "\4\0\0\0", 4);
    }
    return done(result);
}

int mac_getattrlist(const char* path, const AttributeList* wanted, void* attributes, size_t size,
                    unsigned long options) {
    return give_no_attributes(AT_FDCWD, path, *wanted, attributes, size, options);
}

int mac_getattrlistat(int folder, const char* path, const AttributeList* wanted, void* attributes,
                      size_t size, unsigned long options) {
    return give_no_attributes(folder_of(folder), path, *wanted, attributes, size, options);
}

/// Ends the process when an option of an attribute function is set.
void expect_no_options(std::uint32_t position, int options) {
    if (position != 0 || options != 0) {
        unknown("options of an attribute function", options);
    }
}

ssize_t mac_getxattr(const char* path, const char* name, void* value, size_t size,
                     std::uint32_t position, int options) {
    expect_no_options(position, options);
    return done(::getxattr(path, (std::string("user.") + name).c_str(), value, size));
}

int mac_setxattr(const char* path, const char* name, const void* value, size_t size,
                 std::uint32_t position, int options) {
    expect_no_options(position, options);
    return done(::setxattr(path, (std::string("user.") + name).c_str(), value, size, 0));
}

ssize_t mac_listxattr(const char* path, char* names, size_t size, int options) {
    expect_no_options(0, options);
    std::array<char, 65536> all{};
    const ssize_t length = ::listxattr(path, all.data(), all.size());
    ssize_t at = 0;
    for (ssize_t i = 0; i < length;) {
        const std::string_view name = &all[static_cast<size_t>(i)];
        i += static_cast<ssize_t>(name.size()) + 1;
        if (name.starts_with("user.")) {
            const size_t count = name.size() - 5 + 1;
            if (names && static_cast<size_t>(at) + count > size) {
                return fail(ERANGE);
            }
            if (names) {
                std::memcpy(names + at, name.data() + 5, count);
            }
            at += static_cast<ssize_t>(count);
        }
    }
    return length < 0 ? done(length) : at;
}

long mac_pathconf(const char* path, int name) {
    if (name < 1 || name > 9) {
        unknown("pathconf", name);
    }
    errno = 0;
    const long result = ::pathconf(path, name - 1); // the first nine are in the same order
    if (result < 0 && errno != 0) {
        mac_errno() = mac_error(errno);
    }
    return result;
}

ssize_t mac_readlink(const char* path, char* text, size_t size) {
    return done(::readlink(path, text, size));
}

const Name names[] = {
    row("_access", mac_access),
    row("_faccessat", mac_faccessat),
    row("_accessx_np", mac_accessx_np),
    row("_getattrlist", mac_getattrlist),
    row("_getattrlistat", mac_getattrlistat),
    row("_getxattr", mac_getxattr),
    row("_setxattr", mac_setxattr),
    row("_listxattr", mac_listxattr),
    row("_pathconf", mac_pathconf),
    row("_readlink", mac_readlink),
};

} // namespace

std::span<const Name> attribute_names() {
    return names;
}

} // namespace lumo::macos
