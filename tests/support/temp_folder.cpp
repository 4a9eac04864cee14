// Files are written and read as a whole, as bytes.
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

namespace lumo::test {

TempFolder::TempFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "lumo-test-XXXXXX").string();
    if (!mkdtemp(name.data())) {
        throw std::runtime_error("no folder for the test: " + name);
    }
    path_ = std::filesystem::canonical(name);
}

TempFolder::~TempFolder() {
    std::error_code error;
    std::filesystem::remove_all(path_, error);
}

void write_file(const std::filesystem::path& path, std::string_view bytes) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    ASSERT_TRUE(stream) << path;
}

std::string read_file(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace lumo::test
