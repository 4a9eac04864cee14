// A lock against other processes that write into the same folder.
#pragma once

#include <string>

namespace lumo::exs {

/// An exclusive advisory lock on a folder. The constructor waits for it; the destructor releases
/// it. If the folder cannot be locked, the object holds no lock, and that is not an error.
class FolderLock {
public:
    explicit FolderLock(const std::string& folder);
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

private:
    int descriptor_;
};

} // namespace lumo::exs
