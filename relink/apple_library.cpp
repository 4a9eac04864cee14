// Each root of Apple's library is a sequence of folder names. A path belongs to the library when
// such a sequence occurs anywhere in it, since a library that was moved to another volume keeps its
// inner folders. Some roots have names that folders in a user's own Library may have too; these are
// ignored inside a home folder's Library. The names of the other roots are unique to Apple's
// content.
#include "apple_library.h"

#include <strings.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace lumo::exs::relink {
namespace {

using Components = std::vector<std::string_view>;

/// The components of `path` without "" and ".", with ".." resolved lexically.
Components components(std::string_view path) {
    Components result;
    result.reserve(16);
    for (std::size_t begin = 0, end = 0; end != std::string_view::npos; begin = end + 1) {
        end = path.find('/', begin);
        const std::string_view component = path.substr(begin, end - begin);
        if (component == "..") {
            if (!result.empty()) {
                result.pop_back();
            }
        } else if (!component.empty() && component != ".") {
            result.push_back(component);
        }
    }
    return result;
}

/// Sequences of nested folder names; "*" matches any one name.
using Folders = std::vector<Components>;

/// Roots in a Library folder, that of the system or of a volume.
const Folders& library_roots() {
    static const Folders roots{
        components("Library/Application Support/GarageBand"),
        components("Library/Application Support/Logic"),
        components("Library/Application Support/MainStage"),
        components("Library/Application Support/com.apple.musicapps.content"),
        components("Library/Audio/Apple Loops/Apple"),
        components("Library/Audio/Impulse Responses/Apple"),
        components("System/Library/Components/CoreAudio.component/Contents/Resources/"
                   "gs_instruments.dls"),
        components("System/Library/Sounds"),
    };
    return roots;
}

/// Roots whose names are unique to Apple's content.
const Folders& named_roots() {
    static const Folders roots{
        components("GarageBand.app/Contents/Resources"),
        components("Logic Pro.app/Contents/Resources"),
        components("Logic Pro X.app/Contents/Resources"),
        components("MainStage.app/Contents/Resources"),
        components("Logic Pro Library.bundle"),
    };
    return roots;
}

/// The root folders of volumes: the start-up volume and mounted ones.
const Folders& volumes() {
    static const Folders folders{
        components("/"),
        components("/Volumes/*"),
        components("/System/Volumes/Data"),
        components("/mnt/*"),
        components("/media/*"),
        components("/media/*/*"),
        components("/run/media/*/*"),
    };
    return folders;
}

bool is_same_name(std::string_view name, std::string_view wanted) {
    return wanted == "*" || (name.size() == wanted.size() &&
                             strncasecmp(name.data(), wanted.data(), name.size()) == 0);
}

bool leads_through_any(const Components& path, const Folders& folders) {
    return std::any_of(folders.begin(), folders.end(), [&](const Components& names) {
        return std::search(path.begin(), path.end(), names.begin(), names.end(), is_same_name) !=
               path.end();
    });
}

bool ends_any(std::string_view name, const Folders& folders) {
    return std::any_of(folders.begin(), folders.end(),
                       [&](const Components& names) { return is_same_name(name, names.back()); });
}

/// Whether `path` begins with the folders `folder`, below the root folder of any volume.
bool begins_with(const Components& path, const Components& folder) {
    return std::any_of(volumes().begin(), volumes().end(), [&](const Components& volume) {
        const auto [rest, unmatched] =
            std::mismatch(path.begin(), path.end(), volume.begin(), volume.end(), is_same_name);
        return unmatched == volume.end() &&
               std::mismatch(rest, path.end(), folder.begin(), folder.end(), is_same_name).second ==
                   folder.end();
    });
}

/// Whether `path` is inside the Library of a home folder, which belongs to the user whatever its
/// folders are called. /Users/Shared is not a home folder.
bool is_in_home_library(const Components& path) {
    return begins_with(path, components("home/*/Library")) ||
           (begins_with(path, components("Users/*/Library")) &&
            !begins_with(path, components("Users/Shared")));
}

} // namespace

bool is_in_apple_library(std::string_view path) {
    const Components names = components(path);
    return leads_through_any(names, named_roots()) ||
           (leads_through_any(names, library_roots()) && !is_in_home_library(names));
}

bool may_enter_apple_library(std::string_view name) {
    return ends_any(name, library_roots()) || ends_any(name, named_roots());
}

} // namespace lumo::exs::relink
