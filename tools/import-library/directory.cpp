// readdir usually returns the types of entries, too, so that no entry takes a system call of its
// own.
#include "directory.h"

#include <dirent.h>
#include <sys/stat.h>

#include <cerrno>
#include <memory>

namespace lumo::library {
namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

/// The type of a file on a file system that does not list types.
unsigned char type_of(const std::string& path) {
    struct stat status {};
    lstat(path.c_str(), &status); // when it fails, the mode stays 0: DT_UNKNOWN
    return static_cast<unsigned char>(IFTODT(status.st_mode));
}

} // namespace

bool read_visible_entries(const std::string& folder, const TakeEntry& take) {
    const std::unique_ptr<DIR, CloseFolder> entries(opendir(folder.c_str()));
    if (!entries) {
        return false;
    }
    for (;;) {
        errno = 0; // readdir sets it on failure
        const dirent* entry = readdir(entries.get());
        if (!entry) {
            return errno == 0;
        }
        const std::string_view name = entry->d_name;
        if (!name.starts_with('.')) {
            take(name, entry->d_type != DT_UNKNOWN ? entry->d_type
                                                   : type_of(folder + '/' + std::string(name)));
        }
    }
}

} // namespace lumo::library
