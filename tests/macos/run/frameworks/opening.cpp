// The functions that open a file.
#include "frameworks/calls.h"
#include "system/flags.h"
#include "system/variadic.h"

#include <stdio.h>
#include <unistd.h>

namespace lumo::macos {

int open_with(const std::string& how, const char* path, int flags, int mode) {
    const auto call = [&](auto... named) {
        return call_variadic<int>(system_address("_" + how), mode, named...);
    };
    if (how == "openat" || how == "openat$NOCANCEL") {
        return call(mac_at_fdcwd, path, flags);
    }
    if (how == "open_dprotected_np") {
        return call(path, flags, 0, 0);
    }
    if (how == "openat_dprotected_np") {
        return call(mac_at_fdcwd, path, flags, 0, 0);
    }
    const unsigned long guard = 1;
    if (how == "guarded_open_np") {
        return call(path, &guard, 0u, flags);
    }
    if (how == "guarded_open_dprotected_np") {
        return call(path, &guard, 0u, flags, 0, 0);
    }
    if (how == "fopen" || how == "fopen$DARWIN_EXTSN") {
        FILE* stream = system_call<FILE*(const char*, const char*)>("_" + how)(path, "re");
        const int file = stream ? ::dup(::fileno(stream)) : -1;
        if (stream) {
            ::fclose(stream);
        }
        return file;
    }
    return call(path, flags); // open, open$NOCANCEL
}

} // namespace lumo::macos
