// flock() locks the open descriptor: closing it releases the lock, and so does the end of the
// process.
#include "folder_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <utility>

namespace lumo::exs {

Descriptor open_folder(const std::string& path) {
    return Descriptor(
        uninterrupted([&] { return open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
}

FolderLock::FolderLock(Descriptor folder) : folder_(std::move(folder)) {
    if (folder_) {
        uninterrupted([&] { return flock(folder_.get(), LOCK_EX); });
    }
}

FolderLock::~FolderLock() {
    const int folder = folder_.release();
    if (folder >= 0 && close(folder) != 0) {
        flock(folder, LOCK_UN); // a folder that is still open keeps its lock
    }
}

} // namespace lumo::exs
