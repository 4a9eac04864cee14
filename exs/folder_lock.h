// A lock against other processes that write into the same folder.
#pragma once

#include "base/descriptor.h"

#include <string>

namespace lumo::exs {

/// Opens the folder at `path`; none if that cannot be done.
Descriptor open_folder(const std::string& path);

/// An exclusive advisory lock on an open folder. The constructor waits for it; the destructor
/// releases it. If the folder cannot be locked, or there is none, the object holds no lock, and
/// that is not an error.
class FolderLock {
public:
    explicit FolderLock(Descriptor folder);
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

private:
    Descriptor folder_;
};

} // namespace lumo::exs
