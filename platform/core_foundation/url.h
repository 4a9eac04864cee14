// File URLs, and the parts of URL syntax needed to convert a reference to a path.
#pragma once

#include "core_foundation/object.h"

#include <optional>
#include <string>
#include <utility>

namespace lumo::platform {

/// A URL as text and, if it has one, its path.
struct Url : Object {
    Url(Owned as_text, std::optional<std::string> as_path, std::string base)
        : Object{Kind::url}, text(std::move(as_text)), path(std::move(as_path)),
          base_path(std::move(base)) {}

    Owned text;                      ///< A String: the URL as written, percent-encoded.
    std::optional<std::string> path; ///< Decoded bytes, without the trailing slash of a folder.
    std::string base_path; ///< Base folder of a relative path, with a trailing "/"; or "".
};

/// Whether two URLs have the same text and the same base folder.
bool equal_urls(const Url& a, const Url& b);

} // namespace lumo::platform
