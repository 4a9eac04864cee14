// dyld stores the path with which the program was started, which may be a link.
#include "own_path.h"

#include <mach-o/dyld.h>

#include <cstdint>
#include <filesystem>
#include <system_error>

namespace lumo::library {

std::string own_path() {
    std::uint32_t size = 0;
    _NSGetExecutablePath(nullptr, &size); // returns the necessary size
    std::string path(size, '\0');
    if (_NSGetExecutablePath(path.data(), &size) != 0) {
        return {};
    }
    std::error_code error;
    return std::filesystem::canonical(path.c_str(), error).string();
}

} // namespace lumo::library
