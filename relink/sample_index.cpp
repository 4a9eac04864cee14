// SampleIndex: composes the walk, the insertion and the choice of a sample.
#include "folder_walk.h"
#include "found_samples.h"
#include "mangled_names.h"
#include "sample_choice.h"
#include "sample_names.h"
#include <lumo/relink.h>

namespace lumo::exs {

void SampleIndex::add_root(const std::string& root) {
    relink::FoundSamples samples;
    // Unless files were added, the first sample of a root that is indexed ends the second walk.
    bool is_indexed = false;
    relink::walk_samples(root, [&](const std::string& folder, const relink::NameList& names) {
        is_indexed = samples.is_empty() && relink::has_entry(*this, root, names.at(0));
        samples.add(folder, names);
        return !is_indexed;
    });
    if (!is_indexed) {
        samples.move_into(*this, root);
    }
}

std::optional<std::string> SampleIndex::find(std::string_view recorded) const {
    thread_local std::string key; // storage reused by every look-up of the thread
    const std::string_view name = relink::file_name(recorded);
    relink::make_key(name, key);
    const auto found = files.find(key);
    if (found != files.end() && !found->second.empty()) {
        return std::string(relink::choose(found->second, recorded));
    }
    if (const Entry* entry = relink::find_by_mangled_name(*this, name)) {
        return entry->path;
    }
    return std::nullopt;
}

} // namespace lumo::exs
