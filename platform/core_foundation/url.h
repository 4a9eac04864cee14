// URLs: only their paths are kept.
#pragma once

#include "core_foundation/object.h"

#include <optional>
#include <string>
#include <utility>

namespace lumo::platform {

/// The path of a URL.
struct Url : Object {
    Url(std::optional<std::string> as_path, std::string base)
        : Object{Kind::url}, path(std::move(as_path)), base_path(std::move(base)) {}

    std::optional<std::string> path; ///< Decoded bytes, without the trailing slash of a folder.
    std::string base_path; ///< Base folder of a relative path, with a trailing "/"; or "".
};

} // namespace lumo::platform
