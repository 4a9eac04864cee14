// URLs: created from the bytes of a path or from text, and converted to paths.
#include "core_foundation/url.h"

#include "base/utf8.h"
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

std::string without_last_slash(std::string path) {
    if (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

std::string without_trailing_slashes(std::string path) {
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

/// The path in the text of a URL; nothing when it has none, or one that is not UTF-8.
std::optional<std::string> path_in_text(std::string_view url) {
    const auto encoded = path_of_url(url);
    auto path = encoded ? percent_decoded(*encoded) : std::nullopt;
    if (!path || !is_utf8(*path)) {
        return std::nullopt;
    }
    return without_last_slash(*std::move(path));
}

std::string resolved(const Url& url) {
    if (url.base_path.empty()) {
        return *url.path;
    }
    return without_trailing_slashes(without_dot_components(url.base_path + *url.path));
}

CFURLRef make_url(std::optional<std::string> path, std::string base) {
    return reinterpret_cast<CFURLRef>(new Url{std::move(path), std::move(base)});
}

} // namespace
} // namespace lumo::platform

using namespace lumo::platform;

CFTypeID CFURLGetTypeID() {
    return static_cast<CFTypeID>(Kind::url);
}

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef, const UInt8* bytes, CFIndex length,
                                                 Boolean is_directory) {
    std::string path{reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length)};
    if (path.empty()) {
        return nullptr;
    }
    std::string base = path.front() == '/' ? std::string{} : current_folder();
    return make_url(is_directory != 0 ? without_last_slash(std::move(path))
                                      : without_trailing_slashes(std::move(path)),
                    std::move(base));
}

CFURLRef CFURLCreateWithString(CFAllocatorRef, CFStringRef reference, CFURLRef base) {
    const auto& string = as<String>(reference);
    if (base != nullptr || !string.is_ascii() || !is_url_text(string.ascii())) {
        return nullptr;
    }
    return make_url(path_in_text(string.ascii()), {});
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
