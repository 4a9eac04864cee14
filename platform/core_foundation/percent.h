// Percent-encoded text, and the parts of a URL.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lumo::platform {

/// Decodes percent-encoded text; nothing when a "%" is not followed by two hexadecimal digits.
std::optional<std::string> percent_decoded(std::string_view text);
/// Whether the text has only characters allowed in URLs, and valid percent-encodings.
bool is_url_text(std::string_view text);
/// The path of a URL, still encoded, without query and fragment; nothing when it has none.
std::optional<std::string_view> path_of_url(std::string_view url);
/// Removes the "." and ".." components of a path, as far as they can be resolved lexically.
std::string without_dot_components(std::string_view path);

} // namespace lumo::platform
