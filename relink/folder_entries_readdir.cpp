// Reads a folder's entries with readdir, which every system has.
#include "folder_entries.h"

#include <dirent.h>

#include <memory>
#include <string>

namespace lumo::exs::relink {
namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

} // namespace

void read_entries(Descriptor folder, const TakeEntry& take) {
    const std::unique_ptr<DIR, CloseFolder> stream(fdopendir(folder.get()));
    if (!stream) {
        return;
    }
    folder.release(); // closed by the stream from now on
    while (const dirent* entry = readdir(stream.get())) {
        take(entry->d_name, entry->d_type);
    }
}

std::string real_path_of(const Descriptor&, const std::string& path) {
    return real_path(path);
}

} // namespace lumo::exs::relink
