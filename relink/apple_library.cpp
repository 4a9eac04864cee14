// Each root of Apple's library is a run of folder names. A path belongs to the library when such a
// run stands anywhere in it: a library that was moved to another volume keeps its inner folders.
#include "apple_library.h"

#include <strings.h>

#include <algorithm>
#include <array>
#include <vector>

namespace lumo::exs::relink {
namespace {

using Components = std::vector<std::string_view>;

/// The library's roots; "*" stands for any one name.
constexpr std::array<std::string_view, 13> roots{
    "Library/Application Support/GarageBand",
    "Library/Application Support/Logic",
    "Library/Application Support/MainStage",
    "Library/Application Support/com.apple.musicapps.content",
    "Library/Audio/Apple Loops/Apple",
    "Library/Audio/Impulse Responses/Apple",
    "System/Library/Components/CoreAudio.component/Contents/Resources/gs_instruments.dls",
    "System/Library/Sounds",
    "GarageBand.app/Contents/Resources",
    "Logic Pro.app/Contents/Resources",
    "Logic Pro X.app/Contents/Resources",
    "MainStage.app/Contents/Resources",
    "Logic Pro Library.bundle",
};

/// What people keep in their own Library is theirs, whatever its folders are called.
constexpr std::array<std::string_view, 2> home_libraries{"Users/*/Library", "home/*/Library"};

/// The components of `path` without those that say nothing ("" and "."), ".." taken back.
Components components(std::string_view path) {
    Components result;
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

bool is_same_name(std::string_view name, std::string_view wanted) {
    return wanted == "*" || (name.size() == wanted.size() &&
                             strncasecmp(name.data(), wanted.data(), name.size()) == 0);
}

bool leads_through(const Components& path, std::string_view folders) {
    const Components wanted = components(folders);
    return std::search(path.begin(), path.end(), wanted.begin(), wanted.end(), is_same_name) !=
           path.end();
}

} // namespace

bool is_in_apple_library(std::string_view path) {
    const Components names = components(path);
    const auto is_under = [&](std::string_view folders) { return leads_through(names, folders); };
    return std::any_of(roots.begin(), roots.end(), is_under) &&
           std::none_of(home_libraries.begin(), home_libraries.end(), is_under);
}

} // namespace lumo::exs::relink
