// Filling a large hash map in directory order is bound by memory latency: each name is in another
// bucket, and each growth visits all entries. Therefore the map gets its final size first, and the
// samples are inserted in the order of its buckets, each name's list with its final size. The order
// also makes the destruction of the index visit memory in ascending order.
#include "found_samples.h"

#include "sample_names.h"

#include <algorithm>

namespace lumo::exs::relink {
namespace {

/// How many samples ahead of the current one the memory of a sample is prefetched.
constexpr std::size_t samples_ahead = 8;

/// Makes room for `count` more keys. Grows by at least half the size, so that many roots do not
/// each cause a rehash.
void make_room(SampleIndex& index, std::size_t count) {
    const std::size_t size = index.files.size();
    if (size + count > index.files.bucket_count()) {
        index.files.reserve(std::max(size + count, size + size / 2));
    }
}

bool has_entry_of(const std::string& root, const std::vector<SampleIndex::Entry>& entries) {
    return std::any_of(entries.begin(), entries.end(),
                       [&](const SampleIndex::Entry& entry) { return entry.root == root; });
}

} // namespace

bool has_entry(const SampleIndex& index, const std::string& root, std::string_view name) {
    std::string key;
    make_key(name, key);
    const auto found = index.files.find(key);
    return found != index.files.end() && has_entry_of(root, found->second);
}

void FoundSamples::add(const std::string& folder, const NameList& names) {
    folders_.push_back({folder, names});
    count_ += names.count();
}

void FoundSamples::move_into(SampleIndex& index, const std::string& root) {
    folders_.shrink_to_fit();
    make_room(index, count_);
    const std::vector<Place> places = in_order_of(index);
    if (!index.files.empty() && is_any_of(root, places, index)) {
        *this = {};
        return;
    }
    std::string key;
    for (std::size_t i = 0; i < places.size(); ++i) {
        prefetch_ahead(places, i);
        const Folder& folder = folders_[places[i].folder];
        const std::string_view name = name_at(places[i]);
        make_key(name, key);
        std::vector<SampleIndex::Entry>& entries = index.files[key];
        if (entries.empty()) {
            entries.reserve(count_of_key(key, std::span(places).subspan(i)));
        }
        SampleIndex::Entry& entry = entries.emplace_back();
        entry.path.reserve(folder.path.size() + name.size());
        entry.path.append(folder.path).append(name);
        entry.root = root;
    }
    index.entries += count_;
    *this = {};
}

std::vector<FoundSamples::Place> FoundSamples::in_order_of(const SampleIndex& index) const {
    std::string key;
    std::vector<Place> places;
    places.reserve(count_);
    for (std::size_t folder = 0; folder < folders_.size(); ++folder) {
        folders_[folder].names.for_each([&](std::string_view name, std::size_t place) {
            make_key(name, key);
            places.push_back({static_cast<std::uint32_t>(index.files.bucket(key)),
                              static_cast<std::uint32_t>(folder),
                              static_cast<std::uint32_t>(place)});
        });
    }
    std::ranges::sort(places, {}, &Place::bucket);
    return places;
}

bool FoundSamples::is_any_of(const std::string& root, const std::vector<Place>& places,
                             const SampleIndex& index) const {
    std::string key;
    const std::vector<SampleIndex::Entry>* looked_through = nullptr;
    for (std::size_t i = 0; i < places.size(); ++i) {
        prefetch_ahead(places, i);
        make_key(name_at(places[i]), key);
        const auto found = index.files.find(key);
        if (found == index.files.end() || &found->second == looked_through) {
            continue; // entries of one name are adjacent and may be many
        }
        looked_through = &found->second;
        if (has_entry_of(root, *looked_through)) {
            return true;
        }
    }
    return false;
}

std::size_t FoundSamples::count_of_key(const std::string& wanted,
                                       std::span<const Place> places) const {
    const auto next = places.begin() + 1;
    const auto end = std::find_if(next, places.end(), [&](const Place& place) {
        return place.bucket != places.front().bucket;
    });
    std::string key;
    const auto more = std::count_if(next, end, [&](const Place& place) {
        make_key(name_at(place), key);
        return key == wanted;
    });
    return static_cast<std::size_t>(1 + more);
}

const char* FoundSamples::name_at(const Place& place) const {
    return folders_[place.folder].names.at(place.name);
}

void FoundSamples::prefetch_ahead(const std::vector<Place>& places, std::size_t i) const {
    const Place& place = places[std::min(i + samples_ahead, places.size() - 1)];
    const Folder& folder = folders_[place.folder];
    __builtin_prefetch(name_at(place));
    __builtin_prefetch(folder.path.data());
    __builtin_prefetch(folder.path.data() + folder.path.size() / 2);
}

} // namespace lumo::exs::relink
