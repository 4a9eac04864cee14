// Reading folders. A folder stream of a Mac program consists of a pointer to one of this system and
// an entry with the Mac's layout.
#include "system/opening.h"
#include "system/system.h"

#include <dirent.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>

namespace lumo::macos {
namespace {

struct MacEntry {
    std::uint64_t inode, offset;
    std::uint16_t size, name_length;
    std::uint8_t type;
    char name[1024];
};
static_assert(sizeof(MacEntry) == 1048);

struct MacFolder {
    DIR* stream;
    MacEntry entry;
};

MacFolder* mac_fdopendir(int file) {
    DIR* stream = ::fdopendir(file);
    return done(stream ? new MacFolder{stream, {}} : nullptr);
}

MacFolder* mac_opendir(const char* path) {
    const int file =
        open_from_the_c_library(path, 0x100000 | 0x1000000 /* O_DIRECTORY | O_CLOEXEC */, 0);
    MacFolder* folder = file < 0 ? nullptr : mac_fdopendir(file);
    if (file >= 0 && !folder) {
        ::close(file);
    }
    return folder;
}

MacEntry* mac_readdir(MacFolder* folder) {
    errno = 0;
    const dirent* entry = ::readdir(folder->stream);
    if (!entry) {
        if (errno != 0) {
            mac_errno() = mac_error(errno);
        }
        return nullptr;
    }
    MacEntry& to = folder->entry;
    to.inode = entry->d_ino;
    to.type = entry->d_type;
    to.name_length = static_cast<std::uint16_t>(std::strlen(entry->d_name));
    to.size = static_cast<std::uint16_t>((21 + to.name_length + 1 + 7) / 8 * 8);
    std::memcpy(to.name, entry->d_name, to.name_length + 1u);
    return &to;
}

int mac_closedir(MacFolder* folder) {
    const int result = ::closedir(folder->stream);
    delete folder;
    return done(result);
}

const Name names[] = {
    row("_fdopendir" INODE64, mac_fdopendir),
    row("_opendir" INODE64, mac_opendir),
    row("_readdir" INODE64, mac_readdir),
    row("_closedir", mac_closedir),
};

} // namespace

std::span<const Name> folder_names() {
    return names;
}

} // namespace lumo::macos
