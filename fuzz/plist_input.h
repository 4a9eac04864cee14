// Shared by the fuzz targets of property lists.
#pragma once

#include "tests/support/plist_io.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

using lumo::test::binary_form;
using lumo::test::bytes_of;
using lumo::test::list_of;

/// An input as text.
inline std::string_view text_of(const std::uint8_t* bytes, std::size_t size) {
    return {reinterpret_cast<const char*>(bytes), size};
}

/// Stops the fuzzer when `holds` is false.
inline void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}
