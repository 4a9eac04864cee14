// flock() locks the open descriptor, so the system also releases the lock when the process ends.
#include "folder_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

namespace lumo::exs {

FolderLock::FolderLock(const std::string& folder)
    : descriptor_(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    while (descriptor_ >= 0 && flock(descriptor_, LOCK_EX) != 0 && errno == EINTR) {
    }
}

FolderLock::~FolderLock() {
    if (descriptor_ >= 0) {
        flock(descriptor_, LOCK_UN); // releases the lock even if close() fails
        close(descriptor_);
    }
}

} // namespace lumo::exs
