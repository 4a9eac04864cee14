// The metadata of a copied file. The owner is set last: afterwards other changes may not be
// permitted.
#include "copyfile_contents.h"

#include <limits.h>
#include <linux/limits.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <string_view>

namespace lumo::platform {
namespace {

constexpr const char* acl_name = "system.posix_acl_access";
constexpr mode_t carried_bits = ACCESSPERMS | S_ISVTX; ///< like a clone, a copy has no set-id bits

using AttributeValue = std::array<char, XATTR_SIZE_MAX>;

bool is_unavailable(int error) {
    return error == EOPNOTSUPP || error == EPERM || error == EACCES;
}

/// Copies one attribute. A missing attribute counts as copied.
bool copy_attribute(int from, int to, const char* name, AttributeValue& value) {
    const ssize_t size = ::fgetxattr(from, name, value.data(), value.size());
    if (size < 0) {
        return errno == ENODATA || is_unavailable(errno);
    }
    return ::fsetxattr(to, name, value.data(), static_cast<std::size_t>(size), 0) == 0 ||
           is_unavailable(errno);
}

/// Removes the access control list that a new file may have inherited from its folder.
bool remove_inherited_acl(int to) {
    return ::fgetxattr(to, acl_name, nullptr, 0) == -1 || ::fremovexattr(to, acl_name) == 0 ||
           errno == ENODATA || is_unavailable(errno);
}

bool copy_attributes(int from, int to, copyfile_flags_t flags) {
    std::array<char, XATTR_LIST_MAX> names; // not zeroed, like `value`
    AttributeValue value;
    const ssize_t size = ::flistxattr(from, names.data(), names.size());
    if (size < 0 && !is_unavailable(errno)) {
        return false;
    }
    bool has_acl = false;
    for (ssize_t at = 0; at < size;) {
        const std::string_view name(&names[static_cast<std::size_t>(at)]);
        at += static_cast<ssize_t>(name.size()) + 1;
        has_acl = has_acl || name == acl_name;
        if ((flags & COPYFILE_XATTR) != 0 && name.starts_with("user.") &&
            !copy_attribute(from, to, name.data(), value)) {
            return false;
        }
    }
    if ((flags & COPYFILE_ACL) == 0) {
        return true;
    }
    return has_acl ? copy_attribute(from, to, acl_name, value) : remove_inherited_acl(to);
}

/// Sets the owner and the group, or the group only, as far as permitted.
bool copy_owner(int to, const struct stat& status, const struct stat& now) {
    if (now.st_uid == status.st_uid && now.st_gid == status.st_gid) {
        return true;
    }
    const uid_t same = static_cast<uid_t>(-1);
    return ::fchown(to, status.st_uid, status.st_gid) == 0 ||
           ((is_unavailable(errno) || errno == EINVAL) &&
            (::fchown(to, same, status.st_gid) == 0 || is_unavailable(errno) || errno == EINVAL));
}

bool copy_status(int to, const struct stat& status) {
    struct stat now {};
    if (::fstat(to, &now) != 0) {
        return false;
    }
    const mode_t mode = status.st_mode & carried_bits;
    if ((now.st_mode & ALLPERMS) != mode && ::fchmod(to, mode) != 0 && !is_unavailable(errno)) {
        return false;
    }
    const std::array<timespec, 2> times{status.st_atim, status.st_mtim};
    if (::futimens(to, times.data()) != 0 && !is_unavailable(errno)) {
        return false;
    }
    return copy_owner(to, status, now);
}

} // namespace

bool copy_metadata(int from, int to, const struct stat& status, copyfile_flags_t flags) {
    return copy_attributes(from, to, flags) &&
           ((flags & COPYFILE_STAT) == 0 || copy_status(to, status));
}

} // namespace lumo::platform
