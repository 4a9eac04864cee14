// Names from the classic Mac OS are MacRoman; later ones are UTF-8. The encoding is determined by
// the bytes alone: MacRoman text with letters beyond ASCII is hardly ever valid UTF-8. A name that
// fills its field may be truncated within a character; its complete characters are then checked.
//
// The classic systems wrote paths with colons: the volume first, and a colon after each folder. A
// slash was an ordinary character there; later systems show it as a colon.
#include "sampler/exs_text.h"

#include "base/cf_values.h"
#include "base/utf8.h"

#include <algorithm>
#include <cstddef>

namespace lumo::platform {
namespace {

Ref<CFStringRef> from_mac_roman(std::span<const std::uint8_t> bytes) {
    return adopt(CFStringCreateWithBytes(kCFAllocatorDefault, bytes.data(),
                                         static_cast<CFIndex>(bytes.size()),
                                         kCFStringEncodingMacRoman, false));
}

/// The number of bytes at the end that are the start of an incomplete UTF-8 character.
std::size_t unfinished_character(std::span<const std::uint8_t> bytes) {
    constexpr std::size_t max_count = 3;
    for (std::size_t count = 1; count <= std::min(max_count, bytes.size()); ++count) {
        if (bytes[bytes.size() - count] >= 0xC0) {
            return count;
        }
    }
    return 0;
}

bool colon_path(std::string_view directory) {
    return !directory.starts_with('/') && directory.find(':') != std::string_view::npos;
}

/// Converts separators: colons become slashes, and slashes become colons.
std::string posix_parts(std::string_view parts) {
    std::string result(parts);
    for (char& letter : result) {
        letter = letter == ':' ? '/' : letter == '/' ? ':' : letter;
    }
    return result;
}

} // namespace

std::string exs_text(std::span<const std::uint8_t> bytes) {
    std::string text(bytes.begin(), bytes.end());
    if (is_utf8(text)) {
        return text;
    }
    std::string rest = text.substr(0, text.size() - unfinished_character(bytes));
    if (!is_ascii(rest) && is_utf8(rest)) {
        return rest;
    }
    return to_string(from_mac_roman(bytes).get());
}

std::string exs_path(std::string_view directory, std::string_view name) {
    std::string path;
    if (colon_path(directory)) {
        path = "/Volumes/" + posix_parts(directory);
    } else {
        path = directory;
    }
    if (!path.empty() && !path.ends_with('/')) {
        path += '/';
    }
    return path + (colon_path(directory) ? posix_parts(name) : std::string(name));
}

} // namespace lumo::platform
