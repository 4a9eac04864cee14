// The table of same_functions.c for C++.
#include "system/system.h"

#include <cstddef>

extern "C" const lumo::macos::Name lumo_same_functions[];

namespace lumo::macos {

std::span<const Name> same_names() {
    std::size_t count = 0;
    while (lumo_same_functions[count].name) {
        ++count;
    }
    return {lumo_same_functions, count};
}

} // namespace lumo::macos
