// One name may have a hundred thousand files, so each candidate is compared in one pass, byte by
// byte from the end of its path upwards, with the keys of the recorded folders. Only where a
// candidate differs at a byte that may be equal in key form (beyond ASCII, repeated slashes) are
// the keys of its own folders made; only the candidates that share the most folders are ranked
// further.
#include "sample_choice.h"

#include "sample_names.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <utility>

namespace lumo::exs::relink {
namespace {

/// The path before its last slash.
std::string_view folders_of(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
}

/// The keys of the folders of `path`, each after a slash; empty components and "." are skipped.
void make_folder_keys(std::string_view path, std::string& keys) {
    thread_local std::string key;
    keys.clear();
    const std::string_view folders = folders_of(path);
    for (std::size_t begin = 0, end = 0; end != std::string_view::npos; begin = end + 1) {
        end = folders.find('/', begin);
        const std::string_view component = folders.substr(begin, end - begin);
        if (!component.empty() && component != ".") {
            make_key(component, key);
            keys.append(1, '/').append(key);
        }
    }
}

/// Whether the keys certainly differ where a path has `c` and the recorded keys have `key`. Not
/// certain beyond ASCII, where other bytes can have the same key, at empty components and ".", and
/// where the recorded folder is not UTF-8 and keeps its upper-case letters. The key of any other
/// ASCII character does not depend on the preceding ones.
bool is_difference(char key, char c) {
    return is_ascii(c) && c != '/' && c != '.' && to_lower(key) == key;
}

/// The number of consecutive folders, from the file upwards, that `path` shares with `recorded`.
std::size_t count_shared(std::string_view path, std::string_view recorded) {
    const auto is_key_of = [](char key, char c) { return is_ascii(c) && to_lower(c) == key; };
    const std::string_view folders = folders_of(path);
    auto [key, c] = std::mismatch(recorded.rbegin(), recorded.rend(), folders.rbegin(),
                                  folders.rend(), is_key_of);
    // The first component of a relative path has no slash, but its key has one.
    const bool is_certain =
        key == recorded.rend() || (c != folders.rend() && is_difference(*key, *c));
    if (!is_certain) {
        thread_local std::string keys;
        make_folder_keys(path, keys);
        key = std::mismatch(recorded.rbegin(), recorded.rend(), keys.rbegin(), keys.rend()).first;
    }
    return static_cast<std::size_t>(std::count(recorded.rbegin(), key, '/'));
}

/// How many candidates ahead a path is prefetched: paths are scattered in memory, and a cache miss
/// takes longer than a comparison.
constexpr std::size_t candidates_ahead = 8;

void prefetch_end(const std::string& path) {
    __builtin_prefetch(path.data() + path.size());
}

std::size_t count_components(std::string_view path) {
    std::size_t count = 0;
    for (std::size_t begin = path.find_first_not_of('/'); begin != std::string_view::npos;
         begin = path.find_first_not_of('/', path.find('/', begin))) {
        ++count;
    }
    return count;
}

/// Ranks candidates that share equally many folders: the lowest is chosen.
std::pair<std::size_t, std::string_view> rank(std::string_view path) {
    return {count_components(path), path};
}

std::string_view lowest_of(std::span<const std::string_view> paths) {
    auto lowest = rank(paths.front());
    for (const std::string_view path : paths.subspan(1)) {
        lowest = std::min(lowest, rank(path));
    }
    return lowest.second;
}

std::string_view choose_of_several(const std::vector<SampleIndex::Entry>& entries,
                                   std::string_view recorded) {
    thread_local std::string folders;
    thread_local std::vector<std::string_view> nearest;
    make_folder_keys(recorded, folders);
    nearest.clear();
    std::size_t max_shared = 0;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        prefetch_end(entries[std::min(i + candidates_ahead, entries.size() - 1)].path);
        const std::string_view path = entries[i].path;
        const std::size_t shared = count_shared(path, folders);
        if (shared > max_shared) {
            nearest.clear();
            max_shared = shared;
        }
        if (shared == max_shared) {
            nearest.push_back(path);
        }
    }
    return lowest_of(nearest);
}

} // namespace

std::string_view choose(const std::vector<SampleIndex::Entry>& entries, std::string_view recorded) {
    return entries.size() == 1 ? entries.front().path : choose_of_several(entries, recorded);
}

} // namespace lumo::exs::relink
