// A large map that is filled in the order of the disk spends its time waiting for memory: each name
// falls into another bucket, and each growth of the map visits all that it holds. So the map gets
// its size first, and the samples are put into it in the order of its buckets. What belongs
// together then lies together, and when the index is destroyed its parts are met in the order of
// memory.
//
// That order takes some bytes a sample beside the index. The samples are moved in two halves: the
// bytes of the first are free when the index has its full size.
#include "found_samples.h"

#include "sample_names.h"

#include <algorithm>
#include <numeric>
#include <span>

namespace lumo::exs::relink {
namespace {

/// How many lots the samples are moved in.
constexpr std::size_t parts = 2;

/// How many samples ahead the memory is asked for that a sample is read from.
constexpr std::size_t ahead = 8;

/// Makes room for `count` more keys; grows by half the size or more, so that roots may be many.
void make_room(SampleIndex& index, std::size_t count) {
    const std::size_t size = index.files.size();
    if (size + count > index.files.bucket_count()) {
        index.files.reserve(std::max(size + count, size + size / 2));
    }
}

} // namespace

void FoundSamples::add(const std::string& folder, const NameList& names) {
    folders_.push_back({folder, names});
    count_ += names.count();
}

bool FoundSamples::are_in(const SampleIndex& index, const std::string& root) const {
    if (folders_.empty()) {
        return false;
    }
    std::string key;
    make_key(folders_.front().names.at(0), key);
    const auto found = index.files.find(key);
    const auto is_of_root = [&](const SampleIndex::Entry& entry) { return entry.root == root; };
    return found != index.files.end() &&
           std::any_of(found->second.begin(), found->second.end(), is_of_root);
}

void FoundSamples::move_into(SampleIndex& index, const std::string& root) {
    folders_.shrink_to_fit();
    make_room(index, count_);
    for (std::size_t part = 0; part < parts; ++part) {
        move_folders(folders_.size() * part / parts, folders_.size() * (part + 1) / parts, index,
                     root);
    }
    index.entries += count_;
    *this = {};
}

std::vector<FoundSamples::Place> FoundSamples::in_order_of_buckets(std::size_t begin,
                                                                   std::size_t end,
                                                                   const SampleIndex& index) const {
    std::string key;
    std::vector<Place> places;
    const auto folders = std::span(folders_).subspan(begin, end - begin);
    places.reserve(std::accumulate(
        folders.begin(), folders.end(), std::size_t{0},
        [](std::size_t count, const Folder& folder) { return count + folder.names.count(); }));
    for (std::size_t folder = begin; folder < end; ++folder) {
        folders_[folder].names.for_each([&](std::string_view name, std::size_t place) {
            make_key(name, key);
            places.push_back({static_cast<std::uint32_t>(index.files.bucket(key)),
                              static_cast<std::uint32_t>(folder), place});
        });
    }
    std::sort(places.begin(), places.end(),
              [](const Place& a, const Place& b) { return a.bucket < b.bucket; });
    return places;
}

void FoundSamples::prefetch(const Place& place) const {
    const Folder& folder = folders_[place.folder];
    __builtin_prefetch(folder.names.at(place.name));
    __builtin_prefetch(folder.path.data());
    __builtin_prefetch(folder.path.data() + folder.path.size() / 2);
}

void FoundSamples::move_folders(std::size_t begin, std::size_t end, SampleIndex& index,
                                const std::string& root) {
    const std::vector<Place> places = in_order_of_buckets(begin, end, index);
    std::string key;
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (i + ahead < places.size()) {
            prefetch(places[i + ahead]);
        }
        const Folder& folder = folders_[places[i].folder];
        const std::string_view name = folder.names.at(places[i].name);
        make_key(name, key);
        SampleIndex::Entry& entry = index.files[key].emplace_back(SampleIndex::Entry{{}, root});
        entry.path.reserve(folder.path.size() + name.size());
        entry.path.append(folder.path).append(name);
    }
    for (std::size_t folder = begin; folder < end; ++folder) {
        folders_[folder] = {};
    }
}

} // namespace lumo::exs::relink
