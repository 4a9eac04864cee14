// The functions that check whether a file exists.
#include "frameworks/calls.h"
#include "loader/image.h"
#include "system/flags.h"
#include "system/system.h"

#include <unistd.h>

#include <cstdio>

namespace lumo::macos {

bool look_with(const std::string& how, const char* path) {
    alignas(8) char room[4096];
    unsigned short wanted[12] = {5};
    int result = 0;
    if (how == "stat" || how == "lstat") {
        result = system_call<int(const char*, void*)>("_" + how + INODE64)(path, room);
    } else if (how == "stat64" || how == "lstat64") {
        result = system_call<int(const char*, void*)>("_" + how)(path, room);
    } else if (how == "statfs") {
        result = system_call<int(const char*, void*)>("_statfs" INODE64)(path, room);
    } else if (how == "fstatat") {
        result =
            system_call<int(int, const char*, void*, int)>("_fstatat" INODE64)(-2, path, room, 0);
    } else if (how == "access") {
        result = system_call<int(const char*, int)>("_access")(path, R_OK);
    } else if (how == "faccessat") {
        result = system_call<int(int, const char*, int, int)>("_faccessat")(-2, path, R_OK, 0);
    } else if (how == "accessx_np") {
        struct {
            unsigned name;
            int flags, pad[2];
        } list[64] = {{16, R_OK, {}}};
        std::snprintf(reinterpret_cast<char*>(&list[1]), sizeof list - 16, "%s", path);
        int error = 0;
        result = system_call<int(const void*, size_t, int*, unsigned)>("_accessx_np")(
            list, sizeof list, &error, 0);
        if (result == 0 && error != 0) {
            mac_errno() = error;
            result = -1;
        }
    } else if (how == "getattrlist") {
        result = system_call<int(const char*, void*, void*, size_t, unsigned long)>("_getattrlist")(
            path, wanted, room, sizeof room, 0);
    } else if (how == "getattrlistat") {
        result = system_call<int(int, const char*, void*, void*, size_t, unsigned long)>(
            "_getattrlistat")(-2, path, wanted, room, sizeof room, 0);
    } else if (how == "pathconf") {
        result = static_cast<int>(system_call<long(const char*, int)>("_pathconf")(path, 4));
    } else if (how == "listxattr") {
        result = static_cast<int>(system_call<ssize_t(const char*, char*, size_t, int)>(
            "_listxattr")(path, room, sizeof room, 0));
    } else if (how == "realpath" || how == "realpath$DARWIN_EXTSN") {
        char* resolved = system_call<char*(const char*, char*)>("_" + how)(path, room);
        result = resolved ? 0 : -1;
    } else if (!how.empty()) {
        give_up("unknown LUMO_SAMPLER_LOOKS " + how);
    }
    return result >= 0;
}

} // namespace lumo::macos
