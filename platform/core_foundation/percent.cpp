// URL syntax (RFC 3986), as far as file references need it.
#include "core_foundation/percent.h"

#include "base/characters.h"

#include <algorithm>
#include <cstddef>

namespace lumo::platform {
namespace {

/// Whether the character may be part of a URL other than in a percent-encoding.
bool is_plain(char c) noexcept {
    return is_letter(c) || is_digit(c) ||
           std::string_view{"-_.!~*'()/:@&=+$,;?#[]"}.find(c) != std::string_view::npos;
}

std::optional<unsigned> hex_value(char c) noexcept {
    if (is_digit(c)) {
        return static_cast<unsigned>(c - '0');
    }
    const char lower = to_lower(c);
    return lower >= 'a' && lower <= 'f' ? std::optional<unsigned>(lower - 'a' + 10) : std::nullopt;
}

/// The byte of the percent-encoding at the start of `text`; nothing when it is incomplete.
std::optional<char> encoded_byte(std::string_view text) noexcept {
    if (text.size() < 3) {
        return std::nullopt;
    }
    const auto high = hex_value(text[1]);
    const auto low = hex_value(text[2]);
    if (!high || !low) {
        return std::nullopt;
    }
    return static_cast<char>(*high << 4 | *low);
}

/// The text after the scheme and its colon; the whole text when it has no scheme.
std::string_view without_scheme(std::string_view url) noexcept {
    const std::size_t end = url.find_first_of(":/?#");
    const bool has_scheme = end != std::string_view::npos && url[end] == ':' && is_letter(url[0]);
    return has_scheme ? url.substr(end + 1) : url;
}

} // namespace

std::optional<std::string> percent_decoded(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '%') {
            bytes.push_back(text[at]);
            continue;
        }
        const auto byte = encoded_byte(text.substr(at));
        if (!byte) {
            return std::nullopt;
        }
        bytes.push_back(*byte);
        at += 2;
    }
    return bytes;
}

bool is_url_text(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c == '%' || is_plain(c); }) &&
           percent_decoded(text).has_value();
}

std::optional<std::string_view> path_of_url(std::string_view url) {
    std::string_view rest = without_scheme(url);
    const bool has_scheme = rest.size() != url.size();
    if (rest.substr(0, 2) == "//") {
        rest.remove_prefix(std::min(rest.find_first_of("/?#", 2), rest.size()));
    }
    rest = rest.substr(0, rest.find_first_of("?#"));
    if (rest.empty() || (has_scheme && rest.front() != '/')) {
        return std::nullopt;
    }
    return rest;
}

std::string without_dot_components(std::string_view path) {
    std::string result;
    std::size_t at = 0;
    while (at < path.size()) { // each iteration takes a component and its leading slash
        const std::size_t end = std::min(path.find('/', at + 1), path.size());
        const std::string_view component = path.substr(at, end - at);
        const bool is_last = end == path.size();
        if (component == "/..") {
            result.erase(std::min(result.rfind('/'), result.size()));
        } else if (component != "/.") {
            result += component;
        }
        if (is_last && (component == "/." || component == "/..")) {
            result += '/';
        }
        at = end;
    }
    return result;
}

} // namespace lumo::platform
