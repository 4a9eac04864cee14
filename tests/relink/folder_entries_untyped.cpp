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

} // namespace lumo::exs::relink
