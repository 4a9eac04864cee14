// Linux has a link to the program of each process.
#include "own_path.h"

#include <filesystem>
#include <system_error>

namespace lumo::library {

std::string own_path() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).string();
}

} // namespace lumo::library
