// Processes. A Mac program that a Mac program starts runs under this program.
#include "loader/image.h"
#include "system/system.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace lumo::macos {
namespace {

bool is_mac_program(const char* path) {
    std::uint32_t magic = 0;
    const int file = ::openat(AT_FDCWD, path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    // pread fails for a pipe; read would consume its bytes.
    const bool is_read = file >= 0 && ::pread(file, &magic, sizeof magic, 0) == sizeof magic;
    if (file >= 0) {
        ::close(file);
    }
    return is_read && (magic == magic_64 || magic == magic_fat);
}

/// The program that runs a Mac program: this one, or the script beside it that starts an emulator.
char* runner() {
    static char self[4096];
    const ssize_t length = ::readlink("/proc/self/exe", self, sizeof self - 1);
    self[length > 0 ? length : 0] = 0;
    if (char* const emulated = std::strstr(self, ".emulated"); emulated && !emulated[9]) {
        *emulated = 0;
    }
    return self;
}

/// The words of a command, with this program inserted before each Mac program: the command itself,
/// and arguments of a program of this system.
std::vector<char*> with_this_program(char* const* words) {
    std::vector<char*> all;
    for (; *words; ++words) {
        if (std::strchr(*words, '/') && is_mac_program(*words)) {
            all.push_back(runner());
        }
        all.push_back(*words);
    }
    all.push_back(nullptr);
    return all;
}

int mac_execv(const char* path, char* const* arguments) {
    const std::vector<char*> all = with_this_program(arguments);
    return done(::execv(is_mac_program(path) ? runner() : path, all.data()));
}

int mac_execvp(const char* name, char* const* arguments) {
    const std::vector<char*> all = with_this_program(arguments);
    return std::strchr(name, '/') ? mac_execv(name, arguments) : done(::execvp(name, all.data()));
}

int mac_fork() {
    return done(::fork());
}

int mac_setuid(uid_t user) {
    return done(::setuid(user));
}

int mac_setgid(gid_t group) {
    return done(::setgid(group));
}

// GoogleTest counts the threads of its own process.
unsigned mac_task = 1;

int mac_task_threads(unsigned, void** list, unsigned* count) {
    *list = nullptr;
    *count = 1;
    return 0;
}

int mac_vm_deallocate(unsigned, std::uintptr_t, std::uintptr_t) {
    return 0;
}

// libc++ looks for a crash reporter; there is none.
void* mac_dlopen(const char*, int) {
    return nullptr;
}

/// The function of libSystem or of a loaded library; the handle is ignored.
void* mac_dlsym(void*, const char* name) {
    return interposed(find_anywhere(std::string("_") + name));
}

const Name names[] = {
    row("_dlopen", mac_dlopen),
    row("_dlsym", mac_dlsym),
    row("_execv", mac_execv),
    row("_execvp", mac_execvp),
    row("_fork", mac_fork),
    row("_setuid", mac_setuid),
    row("_setgid", mac_setgid),
    row("_mach_task_self_", &mac_task),
    row("_task_threads", mac_task_threads),
    row("_vm_deallocate", mac_vm_deallocate),
};

} // namespace

std::span<const Name> process_names() {
    return names;
}

} // namespace lumo::macos
