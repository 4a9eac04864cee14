// Reads a folder's entries with getdents64. The C library's folder stream would need three more
// system calls and an allocation for each folder. The kernel provides the folder's path through
// /proc, where realpath would make a call for each parent folder.
#include "folder_entries.h"

#include <dirent.h>
#include <limits.h>
#include <unistd.h>

#include <cstddef>
#include <string>

namespace lumo::exs::relink {

void read_entries(Descriptor folder, const TakeEntry& take) {
    alignas(dirent64) char entries[1 << 16];
    const auto read_some = [&] { return getdents64(folder.get(), entries, sizeof entries); };
    for (ssize_t size; (size = uninterrupted(read_some)) > 0;) {
        for (ssize_t at = 0; at < size;) {
            const auto* entry = reinterpret_cast<const dirent64*>(entries + at);
            take(entry->d_name, entry->d_type);
            at += entry->d_reclen;
        }
    }
}

std::string real_path_of(const Descriptor& folder, const std::string& path) {
    char text[PATH_MAX];
    const std::string self = "/proc/self/fd/" + std::to_string(folder.get());
    // Fails rather than truncate a path of PATH_MAX bytes or more.
    const ssize_t size = readlink(self.c_str(), text, sizeof text);
    const bool is_path = size != -1 && text[0] == '/'; // not a text such as "(unreachable)"
    return is_path ? std::string(text, static_cast<std::size_t>(size)) : real_path(path);
}

} // namespace lumo::exs::relink
