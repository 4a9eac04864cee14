// One name may have a hundred thousand files, so each candidate is compared in one pass, byte by
// byte from the end of its path upwards, with the keys of the recorded folders. Only where a
// candidate differs at a byte that may be equal in key form (beyond ASCII, repeated slashes) are
// the keys of its own folders made; only the candidates that share the most folders are ranked
// further.
#include "sample_choice.h"

#include "sample_names.h"

#include <algorithm>
#include <cstddef>
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
    const auto [key, c] = std::mismatch(recorded.rbegin(), recorded.rend(), folders.rbegin(),
                                        folders.rend(), is_key_of);
    const auto count = std::count(recorded.rbegin(), key, '/');
    if (key == recorded.rend()) {
        return static_cast<std::size_t>(count);
    }
    if (c == folders.rend()) { // the first component of a relative path has no slash
        return static_cast<std::size_t>(count + (*key == '/' ? 1 : 0));
    }
    if (is_difference(*key, *c)) {
        return static_cast<std::size_t>(count);
    }
    thread_local std::string keys;
    make_folder_keys(path, keys);
    const auto end =
        std::mismatch(recorded.rbegin(), recorded.rend(), keys.rbegin(), keys.rend()).first;
    return static_cast<std::size_t>(std::count(recorded.rbegin(), end, '/'));
}

/// How many candidates ahead a path is prefetched: paths are scattered in memory, and a cache miss
/// takes longer than a comparison.
constexpr std::size_t candidates_ahead = 8;

void prefetch_end(const std::string& path) {
    __builtin_prefetch(path.data() + path.size());
}

std::size_t count_components(std::string_view path) {
    std::size_t count = path.empty() || path.back() == '/' ? 0 : 1;
    for (std::size_t i = 1; i < path.size(); ++i) {
        count += path[i] == '/' && path[i - 1] != '/' ? 1 : 0;
    }
    return count;
}

/// Ranks candidates that share equally many folders: the lowest is chosen.
std::pair<std::size_t, std::string_view> rank(const SampleIndex::Entry& entry) {
    return {count_components(entry.path), entry.path};
}

const SampleIndex::Entry& first_of(const std::vector<const SampleIndex::Entry*>& entries) {
    const SampleIndex::Entry* first = entries.front();
    auto lowest = rank(*first);
    for (std::size_t i = 1; i < entries.size(); ++i) {
        if (const auto other = rank(*entries[i]); other < lowest) {
            lowest = other;
            first = entries[i];
        }
    }
    return *first;
}

} // namespace

const SampleIndex::Entry& choose(const std::vector<SampleIndex::Entry>& entries,
                                 std::string_view recorded) {
    if (entries.size() == 1) {
        return entries.front();
    }
    thread_local std::string folders;
    thread_local std::vector<const SampleIndex::Entry*> nearest;
    make_folder_keys(recorded, folders);
    nearest.clear();
    std::size_t max_shared = 0;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const SampleIndex::Entry& entry = entries[i];
        if (i + candidates_ahead < entries.size()) {
            prefetch_end(entries[i + candidates_ahead].path);
        }
        const std::size_t shared = count_shared(entry.path, folders);
        if (shared > max_shared) {
            nearest.clear();
            max_shared = shared;
        }
        if (shared == max_shared) {
            nearest.push_back(&entry);
        }
    }
    return first_of(nearest);
}

} // namespace lumo::exs::relink
