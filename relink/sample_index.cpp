// The index is made once, for every file of a disk, so each file costs its path, its place in the
// map and nothing else: keys are made in storage that is used again, and strings are made in the
// size that they keep.
#include "folder_walk.h"
#include "mangled_names.h"
#include "sample_choice.h"
#include "sample_names.h"
#include <lumo/relink.h>

#include <algorithm>

namespace lumo::exs {

void SampleIndex::add_root(const std::string& root) {
    std::string key;
    bool is_first = true;
    bool is_known = false; // the root was added before: the first file that it has is in the index
    relink::walk_samples(root, [&](std::string_view folder, std::string_view name) {
        relink::make_key(name, key);
        std::vector<Entry>& found = files[key];
        if (is_first) {
            is_first = false;
            is_known = std::any_of(found.begin(), found.end(),
                                   [&](const Entry& entry) { return entry.root == root; });
        }
        if (is_known) {
            return;
        }
        Entry& entry = found.emplace_back();
        entry.path.reserve(folder.size() + name.size());
        entry.path.append(folder).append(name);
        entry.root = root;
        ++entries;
    });
}

std::optional<std::string> SampleIndex::find(std::string_view recorded) const {
    thread_local std::string key;
    const std::string_view name = relink::file_name(recorded);
    relink::make_key(name, key);
    const auto found = files.find(key);
    if (found != files.end() && !found->second.empty()) {
        return relink::choose(found->second, recorded).path;
    }
    if (const Entry* entry = relink::find_by_mangled_name(*this, name)) {
        return entry->path;
    }
    return std::nullopt;
}

} // namespace lumo::exs
