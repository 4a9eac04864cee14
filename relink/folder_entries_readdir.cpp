// The entries of a folder from the C library's folder stream, which every system has.
#include "folder_entries.h"

#include <dirent.h>
#include <unistd.h>

#include <memory>

namespace lumo::exs::relink {
namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

} // namespace

void read_entries(int descriptor, const TakeEntry& take) {
    const std::unique_ptr<DIR, CloseFolder> folder(fdopendir(descriptor));
    if (!folder) {
        close(descriptor);
        return;
    }
    while (const dirent* entry = readdir(folder.get())) {
        take(entry->d_name, entry->d_type);
    }
}

} // namespace lumo::exs::relink
