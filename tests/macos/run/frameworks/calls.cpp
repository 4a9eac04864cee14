#include "frameworks/calls.h"

#include "loader/image.h"
#include "system/system.h"

namespace lumo::macos {

void* system_address(const std::string& name) {
    void* function = find_system(name);
    if (!function) {
        give_up("no " + name);
    }
    return interposed(function);
}

} // namespace lumo::macos
