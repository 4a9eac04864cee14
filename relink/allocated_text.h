// Owns strings that C library functions allocate for their caller.
#pragma once

#include <stdlib.h>

#include <memory>
#include <string>

namespace lumo::exs::relink {

struct Free {
    void operator()(char* allocated) const { free(allocated); }
};

/// Returns a copy of `allocated` and frees it; empty for null.
inline std::string take_text(char* allocated) {
    const std::unique_ptr<char, Free> owner(allocated);
    return allocated ? std::string(allocated) : std::string();
}

} // namespace lumo::exs::relink
