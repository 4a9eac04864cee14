// URLs of files, and as much of URLs in general as turning a reference into a path needs.
#pragma once

#include "core_foundation/object.h"

#include <optional>
#include <string>
#include <utility>

namespace lumo::platform {

/// A URL as text and, when it has one, as a path.
struct Url : Object {
    Url(Owned as_text, std::optional<std::string> as_path, std::string base)
        : Object{Kind::url}, text(std::move(as_text)), path(std::move(as_path)),
          base_path(std::move(base)) {}

    Owned text;                      ///< A String: the URL as it is written, percent-encoded.
    std::optional<std::string> path; ///< Its bytes, without the slash at the end of a folder's URL.
    std::string base_path; ///< The folder that a relative path starts from, "/" at the end; or "".
};

/// Whether two URLs have the same text and start from the same folder.
bool equal_urls(const Url& a, const Url& b);

} // namespace lumo::platform
