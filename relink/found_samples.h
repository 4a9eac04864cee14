// The samples of one root on their way from the walk into the index.
#pragma once

#include "name_list.h"
#include <lumo/relink.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace lumo::exs::relink {

/// What a walk found, in the order of the disk and a tenth of its size in the index.
class FoundSamples {
public:
    /// Adds the samples `names` of `folder`, a path with a slash at its end.
    void add(const std::string& folder, const NameList& names);

    /// Puts them into `index` as samples of `root`, unless it has some of them from an earlier walk
    /// of `root`. Empty afterwards.
    void move_into(SampleIndex& index, const std::string& root);

private:
    struct Folder {
        std::string path;
        NameList names;
    };

    /// Where a sample is among those found, and the bucket of the index that it belongs into.
    struct Place {
        std::uint32_t bucket; // only the order depends on it: bits may be lost
        std::uint32_t folder;
        std::uint32_t name;
    };

    std::vector<Place> in_order_of(const SampleIndex& index) const;

    /// Whether `index` has a file of `root` with the name of one of `places`, which are in its
    /// order.
    bool is_any_of(const std::string& root, const std::vector<Place>& places,
                   const SampleIndex& index) const;

    /// How many of `places` from `first` on have the key `wanted`, that of the first.
    std::size_t count_of_key(const std::string& wanted, const std::vector<Place>& places,
                             std::size_t first) const;
    const char* name_at(const Place& place) const;
    void prefetch(const Place& place) const;

    std::vector<Folder> folders_;
    std::size_t count_ = 0;
};

} // namespace lumo::exs::relink
