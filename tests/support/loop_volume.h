// A new volume with a file system of a given kind.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace lumo::test {

/// An empty file system in a file behind a loop device, mounted as long as this object exists. Only
/// on Linux, as root, where the file system's mkfs is installed.
class LoopVolume {
public:
    /// Makes a volume of `kind` ("ext4", "btrfs", ...) and `bytes`; the file and the mount point
    /// are made in `folder`. The file is sparse.
    LoopVolume(const std::filesystem::path& folder, const std::string& kind, std::uintmax_t bytes);
    ~LoopVolume();
    LoopVolume(const LoopVolume&) = delete;
    LoopVolume& operator=(const LoopVolume&) = delete;

    /// Whether it could be mounted.
    bool is_mounted() const { return is_mounted_; }
    /// The root of the volume; a plain empty folder when it is not mounted.
    const std::filesystem::path& path() const { return mount_; }

private:
    std::filesystem::path mount_;
    bool is_mounted_;
};

} // namespace lumo::test
