// A disk that a test can fill.
#pragma once

#include <filesystem>

namespace lumo::test {

/// A file system of 64 KiB, mounted on a folder as long as this object exists. Only on Linux, as
/// root.
class SmallDisk {
public:
    explicit SmallDisk(const std::filesystem::path& folder);
    ~SmallDisk();
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    /// Whether it could be mounted.
    bool is_mounted() const { return is_mounted_; }

private:
    std::filesystem::path folder_;
    bool is_mounted_;
};

} // namespace lumo::test
