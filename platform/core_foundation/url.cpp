// URLs: created from the bytes of a path or from text, and converted to paths.
#include "core_foundation/url.h"

#include "core_foundation/percent.h"
#include "core_foundation/string.h"

#include <unistd.h>

#include <climits>
#include <cstddef>
#include <cstring>
#include <optional>

namespace lumo::platform {
namespace {

/// The current folder with a trailing "/"; empty when it cannot be determined.
std::string current_folder() {
    char buffer[PATH_MAX];
    if (getcwd(buffer, sizeof buffer) == nullptr) {
        return {};
    }
    std::string folder = buffer;
    if (folder.back() != '/') {
        folder += '/';
    }
    return folder;
}

std::string_view without_trailing_slashes(std::string_view path) noexcept {
    while (path.size() > 1 && path.back() == '/') {
        path.remove_suffix(1);
    }
    return path;
}

std::string without_last_slash(std::string path) {
    if (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

/// The path as it is written in a URL: with a trailing slash for a folder, without one for a file.
std::string path_in_url(std::string_view path, bool is_directory) {
    std::string text{is_directory ? path : without_trailing_slashes(path)};
    if (is_directory && text.back() != '/') {
        text += '/';
    }
    return text;
}

/// The path in the text of a URL; nothing when it has none, or one that is not UTF-8.
std::optional<std::string> path_in_text(std::string_view url) {
    const auto encoded = path_of_url(url);
    auto path = encoded ? percent_decoded(*encoded) : std::nullopt;
    if (!path || make_string(*path) == nullptr) {
        return std::nullopt;
    }
    return without_last_slash(*std::move(path));
}

std::string resolved(const Url& url) {
    if (url.base_path.empty()) {
        return *url.path;
    }
    return std::string{without_trailing_slashes(without_dot_components(url.base_path + *url.path))};
}

} // namespace

bool equal_urls(const Url& a, const Url& b) {
    return a.base_path == b.base_path && equal(a.text.get(), b.text.get());
}

} // namespace lumo::platform

using namespace lumo::platform;

CFTypeID CFURLGetTypeID() {
    return static_cast<CFTypeID>(Kind::url);
}

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef, const UInt8* bytes, CFIndex length,
                                                 Boolean is_directory) {
    const std::string_view path{reinterpret_cast<const char*>(bytes),
                                static_cast<std::size_t>(length)};
    if (path.empty()) {
        return nullptr;
    }
    const bool is_absolute = path.front() == '/';
    const std::string whole = path_in_url(path, is_directory != 0);
    const std::string text = percent_encoded(whole);
    return reinterpret_cast<CFURLRef>(
        new Url{make_string_ascii(is_absolute ? "file://" + text : text), without_last_slash(whole),
                is_absolute ? std::string{} : current_folder()});
}

CFURLRef CFURLCreateWithString(CFAllocatorRef, CFStringRef reference, CFURLRef base) {
    const auto& string = as<String>(reference);
    if (base != nullptr || !string.is_ascii() || !is_url_text(string.ascii())) {
        return nullptr;
    }
    return reinterpret_cast<CFURLRef>(
        new Url{share(&string), path_in_text(string.ascii()), std::string{}});
}

CFStringRef CFURLGetString(CFURLRef url) {
    return reinterpret_cast<CFStringRef>(as<Url>(url).text.get());
}

Boolean CFURLGetFileSystemRepresentation(CFURLRef reference, Boolean resolve_against_base,
                                         UInt8* buffer, CFIndex size) {
    if (size <= 0) {
        return false;
    }
    const auto& url = as<Url>(reference);
    buffer[0] = 0;
    if (!url.path) {
        return false;
    }
    const std::string path = resolve_against_base != 0 ? resolved(url) : *url.path;
    if (path.size() >= static_cast<std::size_t>(size)) {
        return false;
    }
    std::memcpy(buffer, path.c_str(), path.size() + 1);
    return true;
}

CFStringRef CFURLCopyFileSystemPath(CFURLRef reference, CFURLPathStyle style) {
    const auto& path = as<Url>(reference).path;
    if (style != kCFURLPOSIXPathStyle || !path) {
        return nullptr;
    }
    return reinterpret_cast<CFStringRef>(make_string(*path).release());
}
