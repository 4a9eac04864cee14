// Keeps processes that write into the same folder apart.
#pragma once

#include <string>

namespace lumo::exs {

/// An exclusive advisory lock on a folder, waited for and held until it goes out of scope. Where
/// the folder cannot be locked there is none, and that is no failure.
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
