// The entries of a folder as the kernel writes them, without the C library's folder stream: that
// would cost three more system calls and a buffer from the heap for each folder of a disk.
#include "folder_entries.h"

#include <dirent.h>

namespace lumo::exs::relink {

void read_entries(Descriptor folder, const TakeEntry& take) {
    alignas(dirent64) char entries[1 << 16];
    for (ssize_t size; (size = getdents64(folder.get(), entries, sizeof entries)) > 0;) {
        for (ssize_t at = 0; at < size;) {
            const auto* entry = reinterpret_cast<const dirent64*>(entries + at);
            take(entry->d_name, entry->d_type);
            at += entry->d_reclen;
        }
    }
}

} // namespace lumo::exs::relink
