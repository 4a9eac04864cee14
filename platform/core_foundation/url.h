// URLs of files, and as much of URLs in general as turning a reference into a path needs.
#pragma once

#include "core_foundation/object.h"

#include <optional>
#include <string>
#include <utility>

namespace lumo::platform {

struct Url : Object {
    Url(Owned url_text, std::optional<std::string> url_path, std::string base)
        : Object{Kind::url}, text{std::move(url_text)}, path{std::move(url_path)}, base_path{
                                                                                       std::move(
                                                                                           base)} {}

    Owned text;                      ///< A String: the URL as it is written, percent-encoded.
    std::optional<std::string> path; ///< Its bytes, without the slash at the end of a folder's URL.
    std::string base_path; ///< The folder that a relative path starts from, "/" at the end; or "".
};

bool equal_urls(const Url& a, const Url& b);

} // namespace lumo::platform
