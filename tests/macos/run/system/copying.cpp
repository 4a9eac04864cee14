// copyfile, by the platform library, and clonefile.
#include "system/system.h"

#include <copyfile.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <new>

namespace lumo::macos {
namespace {

int mac_copyfile(const char* from, const char* to, copyfile_state_t state, copyfile_flags_t flags) {
    return done(::copyfile(from, to, state, flags));
}

void* mac_copyfile_state_alloc() {
    return ::operator new(1);
}

int mac_copyfile_state_free(void* state) {
    ::operator delete(state);
    return 0;
}

int copy_data(int from, int to) {
    std::array<char, 65536> buffer;
    for (off_t at = 0;;) {
        const ssize_t count = ::pread(from, buffer.data(), buffer.size(), at);
        if (count <= 0 || ::pwrite(to, buffer.data(), static_cast<size_t>(count), at) != count) {
            return done(count == 0 ? 0 : -1);
        }
        at += count;
    }
}

/// Copies the data only, as libc++ requests.
int mac_fcopyfile(int from, int to, void*, unsigned flags) {
    if (flags != COPYFILE_DATA) {
        unknown("fcopyfile", flags);
    }
    return copy_data(from, to);
}

/// On a Mac this is a system call, so its paths are not looked up through the interpose sections,
/// unlike those of copyfile.
int mac_clonefile(const char* from, const char* to, std::uint32_t flags) {
    if (flags != 0) {
        unknown("flags of clonefile", flags);
    }
    const int source = ::openat(AT_FDCWD, from, O_RDONLY | O_CLOEXEC);
    const int copy =
        source < 0 ? -1 : ::openat(AT_FDCWD, to, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    const int result = done(copy) < 0 ? -1 : copy_data(source, copy);
    ::close(source);
    ::close(copy);
    return result;
}

const Name names[] = {
    row("_clonefile", mac_clonefile),
    row("_copyfile", mac_copyfile),
    row("_copyfile_state_alloc", mac_copyfile_state_alloc),
    row("_copyfile_state_free", mac_copyfile_state_free),
    row("_fcopyfile", mac_fcopyfile),
};

} // namespace

std::span<const Name> copying_names() {
    return names;
}

} // namespace lumo::macos
