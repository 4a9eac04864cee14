// Tables of the flags that differ between a Mac and this system.
#include "system/flags.h"

#include "system/system.h"

#include <fcntl.h>

namespace lumo::macos {
namespace {

constexpr FlagPair open_pairs[] = {
    {0x1, O_WRONLY},     {0x2, O_RDWR},          {0x4, O_NONBLOCK},
    {0x8, O_APPEND},     {0x80, O_SYNC},         {0x100, O_NOFOLLOW},
    {0x200, O_CREAT},    {0x400, O_TRUNC},       {0x800, O_EXCL},
    {0x8000, O_PATH},    {0x20000, O_NOCTTY},    {0x100000, O_DIRECTORY},
    {0x400000, O_DSYNC}, {0x1000000, O_CLOEXEC}, {0x200000, O_PATH | O_NOFOLLOW}};

constexpr FlagPair at_pairs[] = {{0x20, AT_SYMLINK_NOFOLLOW},
                                 {0x40, AT_SYMLINK_FOLLOW},
                                 {0x80, AT_REMOVEDIR},
                                 {0x10, AT_EACCESS}};

} // namespace

int translate(int flags, std::span<const FlagPair> table, const char* what) {
    int result = 0;
    for (const FlagPair& pair : table) {
        if ((flags & pair.mac) == pair.mac) {
            result |= pair.here;
            flags &= ~pair.mac;
        }
    }
    if (flags != 0) {
        unknown(what, flags);
    }
    return result;
}

int open_flags(int mac) {
    return translate(mac, open_pairs, "O_ flags");
}

int mac_status_flags(int here) {
    constexpr int reported = O_NONBLOCK | O_APPEND | O_DIRECTORY | O_NOFOLLOW;
    int result = here < 0 ? here : here & O_ACCMODE;
    for (const FlagPair& pair : open_pairs) {
        if (here >= 0 && (pair.here & reported) && (here & pair.here) == pair.here) {
            result |= pair.mac;
        }
    }
    return result;
}

int status_flags(int mac) {
    return translate(mac & ~O_ACCMODE, open_pairs, "F_SETFL");
}

int mac_open_flags(int here) {
    constexpr int passed_on = O_WRONLY | O_RDWR | O_NONBLOCK | O_APPEND | O_NOFOLLOW | O_CREAT |
                              O_TRUNC | O_EXCL | O_NOCTTY | O_DIRECTORY | O_CLOEXEC;
    if ((here & ~passed_on) != 0) {
        unknown("open flags of this system", here & ~passed_on);
    }
    int result = 0;
    for (const FlagPair& pair : open_pairs) {
        if ((pair.here & ~passed_on) == 0 && (here & pair.here) == pair.here) {
            result |= pair.mac;
        }
    }
    return result;
}

int at_flags(int mac) {
    return translate(mac, at_pairs, "AT_ flags");
}

int folder_of(int mac) {
    return mac == mac_at_fdcwd ? AT_FDCWD : mac == AT_FDCWD ? -1 : mac;
}

} // namespace lumo::macos
