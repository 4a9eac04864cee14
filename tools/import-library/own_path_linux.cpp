// Linux keeps a link to each process's program.
#include "own_path.h"

#include <filesystem>
#include <system_error>

namespace lumo::library {

std::string own_path() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).string();
}

} // namespace lumo::library
