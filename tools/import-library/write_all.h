// Writes to a descriptor.
#pragma once

#include "base/descriptor.h"

#include <unistd.h>

#include <cstddef>
#include <string_view>

namespace lumo::library {

/// Writes all bytes; false, with errno set, on failure.
inline bool write_all(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written =
            uninterrupted([&] { return write(descriptor, bytes.data(), bytes.size()); });
        if (written == -1) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

} // namespace lumo::library
