// A folder for one test, removed with everything in it when the test ends.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace lumo::test {

/// The folder. Its path contains no symbolic links.
class TempFolder {
public:
    /// Throws std::runtime_error when no folder can be made.
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    /// The path of `name` in the folder.
    std::filesystem::path operator/(std::string_view name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

/// Writes `bytes` to a file and makes missing folders. Fails the test when it cannot.
void write_file(const std::filesystem::path& path, std::string_view bytes);

/// The bytes of a file; empty when it cannot be read.
std::string read_file(const std::filesystem::path& path);

} // namespace lumo::test
