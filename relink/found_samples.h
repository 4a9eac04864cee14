// The samples of one root, collected by the walk before they are inserted into the index.
#pragma once

#include "name_list.h"
#include <lumo/relink.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace lumo::exs::relink {

/// Whether `index` has an entry of `root` with the file name `name`.
bool has_entry(const SampleIndex& index, const std::string& root, std::string_view name);

/// The samples that a walk found, in directory order. Takes about a tenth of the memory that they
/// take in the index.
class FoundSamples {
public:
    /// Adds the samples `names` of `folder`, a path that ends in a slash.
    void add(const std::string& folder, const NameList& names);
    bool is_empty() const { return count_ == 0; }

    /// Moves the samples into `index` as samples of `root`, unless the index has some of them
    /// already from an earlier walk of `root`. This object is empty afterwards.
    void move_into(SampleIndex& index, const std::string& root);

private:
    struct Folder {
        std::string path;
        NameList names;
    };

    /// The position of a sample in this object, and its bucket in the index.
    struct Place {
        std::uint32_t bucket; // truncated to 32 bits: used for the order only
        std::uint32_t folder;
        std::uint32_t name;
    };

    std::vector<Place> in_order_of(const SampleIndex& index) const;

    /// Whether `index` has an entry of `root` with the name of one of `places`, which are in the
    /// order of the buckets.
    bool is_any_of(const std::string& root, const std::vector<Place>& places,
                   const SampleIndex& index) const;

    /// How many of `places`, which are in the order of the buckets, have the key `wanted`, which is
    /// the key of the first.
    std::size_t count_of_key(const std::string& wanted, std::span<const Place> places) const;
    const char* name_at(const Place& place) const;
    /// Prefetches the memory of a sample a few places after `places[i]`, or of the last one.
    void prefetch_ahead(const std::vector<Place>& places, std::size_t i) const;

    std::vector<Folder> folders_;
    std::size_t count_ = 0;
};

} // namespace lumo::exs::relink
