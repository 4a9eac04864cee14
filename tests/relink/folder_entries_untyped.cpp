// The entries of a folder as on a file system that does not report their types.
#include "folder_entries.h"

#include <dirent.h>

#include <memory>

namespace lumo::exs::relink {

void read_entries(Descriptor folder, const TakeEntry& take) {
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(fdopendir(folder.get()), closedir);
    if (!stream) {
        return;
    }
    folder.release();
    while (const dirent* entry = readdir(stream.get())) {
        take(entry->d_name, DT_UNKNOWN);
    }
}

std::string real_path_of(const Descriptor&, const std::string& path) {
    return real_path(path);
}

} // namespace lumo::exs::relink
