// One name may have a hundred thousand files, so each candidate gets one pass over the end of its
// path, byte by byte from the file upwards, against the recorded folders in the form of keys. Only
// a candidate that differs where other bytes may mean the same (beyond ASCII, doubled slashes) has
// its own folders put into that form first.
#include "sample_choice.h"

#include "sample_names.h"

#include <algorithm>
#include <span>

namespace lumo::exs::relink {
namespace {

/// The path up to its last slash, without it.
std::string_view folders_of(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
}

/// The keys of the folders of `path`, each with a slash before it; empty components and "." are
/// left out.
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

/// Whether the component around `at` in `folders` has no other key than itself in lower case. `at`
/// may be the end of `folders`.
bool is_plain(std::string_view folders, std::size_t at) {
    const std::size_t begin = at == 0 ? 0 : folders.rfind('/', at - 1) + 1;
    const std::string_view component = folders.substr(begin, folders.find('/', begin) - begin);
    return !component.empty() && component != "." &&
           std::all_of(component.begin(), component.end(), is_ascii);
}

/// The length of the run of folders that `path` shares with the recorded ones.
std::size_t count_shared(std::string_view path, std::string_view recorded) {
    const auto is_key_of = [](char key, char c) { return is_ascii(c) && to_lower(c) == key; };
    const std::string_view folders = folders_of(path);
    const auto [key, c] = std::mismatch(recorded.rbegin(), recorded.rend(), folders.rbegin(),
                                        folders.rend(), is_key_of);
    const auto count = std::count(recorded.rbegin(), key, '/');
    if (key == recorded.rend()) {
        return static_cast<std::size_t>(count);
    }
    if (c == folders.rend()) { // a relative path has no slash before its first component
        return static_cast<std::size_t>(count + (*key == '/' ? 1 : 0));
    }
    if (is_plain(folders, static_cast<std::size_t>(folders.rend() - c))) {
        return static_cast<std::size_t>(count);
    }
    thread_local std::string keys;
    make_folder_keys(path, keys);
    const auto end =
        std::mismatch(recorded.rbegin(), recorded.rend(), keys.rbegin(), keys.rend()).first;
    return static_cast<std::size_t>(std::count(recorded.rbegin(), end, '/'));
}

std::size_t count_components(std::string_view path) {
    std::size_t count = 0;
    char before = '/';
    for (const char c : path) {
        count += before == '/' && c != '/' ? 1 : 0;
        before = c;
    }
    return count;
}

/// A candidate; its components are counted when another one shares as many folders.
struct Candidate {
    const SampleIndex::Entry* entry;
    std::size_t shared;
    std::size_t components = 0;

    bool is_behind(Candidate& other) {
        if (shared != other.shared) {
            return shared < other.shared;
        }
        count();
        other.count();
        return components != other.components ? components > other.components
                                              : entry->path > other.entry->path;
    }

private:
    void count() {
        if (components == 0) {
            components = count_components(entry->path);
        }
    }
};

} // namespace

const SampleIndex::Entry& choose(const std::vector<SampleIndex::Entry>& entries,
                                 std::string_view recorded) {
    const SampleIndex::Entry& first = entries.front();
    if (entries.size() == 1) {
        return first;
    }
    thread_local std::string folders;
    make_folder_keys(recorded, folders);
    Candidate best{&first, count_shared(first.path, folders)};
    for (const SampleIndex::Entry& entry : std::span(entries).subspan(1)) {
        Candidate candidate{&entry, count_shared(entry.path, folders)};
        if (best.is_behind(candidate)) {
            best = candidate;
        }
    }
    return *best.entry;
}

} // namespace lumo::exs::relink
