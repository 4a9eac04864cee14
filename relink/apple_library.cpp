// Each root of Apple's library is a run of folder names. A path belongs to the library when such a
// run stands anywhere in it: a library that was moved to another volume keeps its inner folders.
#include "apple_library.h"

#include <strings.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace lumo::exs::relink {
namespace {

using Components = std::vector<std::string_view>;

/// The components of `path` without those that say nothing ("" and "."), ".." taken back.
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

/// Folders, one in the other; "*" stands for any one name.
using Folders = std::vector<Components>;

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
        components("GarageBand.app/Contents/Resources"),
        components("Logic Pro.app/Contents/Resources"),
        components("Logic Pro X.app/Contents/Resources"),
        components("MainStage.app/Contents/Resources"),
        components("Logic Pro Library.bundle"),
    };
    return roots;
}

/// What people keep in their own Library is theirs, whatever its folders are called.
const Folders& home_libraries() {
    static const Folders libraries{components("Users/*/Library"), components("home/*/Library")};
    return libraries;
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

} // namespace

bool is_in_apple_library(std::string_view path) {
    const Components names = components(path);
    return leads_through_any(names, library_roots()) && !leads_through_any(names, home_libraries());
}

} // namespace lumo::exs::relink
