// A binary property list is a table of objects that refer to each other by index, so the file may
// describe a tree, a graph with shared nodes or a cycle. Each object is created once, when it is
// first reached from the root. Open containers are kept on an explicit stack. The height of each
// finished object is stored, so the depth of the result is bounded even where objects are shared.
#include "property_list/binary_reader.h"

#include "core_foundation/objects.h"
#include "property_list/binary_objects.h"
#include "property_list/hash_index.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

namespace lumo::platform {
namespace {

/// The maximum number of levels below the root, including leaves, as in CoreFoundation.
constexpr std::size_t max_levels = 512;

/// Objects may overlap in the file. Their total size may exceed the file's size by at most this
/// many bytes, and their number the offset of the table by as much. This keeps a small file from
/// describing unbounded containers, and the table of offsets from taking many times the file's size
/// in memory.
constexpr std::size_t overlap_allowed = 65536;

/// Heights: a leaf has 0, an empty container 1, any other container one more than its highest
/// child. These two values mark an object that is not reached yet, and an open container.
constexpr std::uint16_t not_reached = std::numeric_limits<std::uint16_t>::max();
constexpr std::uint16_t in_progress = not_reached - 1;

/// An object of the file.
struct Slot {
    Owned object; ///< Null until it is created.
    std::uint16_t height = not_reached;
};

/// An open container. The finished children are in `array`, or else in the values from `first` on.
struct OpenContainer {
    std::size_t object; ///< Its index.
    Marker marker;
    unsigned in_pairs;    ///< 1 in a dictionary, else 0.
    std::size_t refs;     ///< Offset of its references.
    std::size_t children; ///< Their number, including keys.
    std::size_t first;
    std::unique_ptr<Array, Releaser> array; ///< Null unless the container is an array.
    std::size_t next = 0;                   ///< The next child to be read.
    std::size_t height = 1;                 ///< The height so far.

    /// The index of the reference of `child`: in the file all keys of a dictionary precede its
    /// values; as children, keys and values alternate.
    std::size_t ref_of(std::size_t child) const {
        return (child >> in_pairs) + (child & in_pairs) * (children >> 1);
    }
    bool is_key(std::size_t child) const { return in_pairs > child % 2; }
};

bool is_container(Marker marker) {
    return marker == Marker::array || marker == Marker::set || marker == Marker::dictionary;
}

class BinaryReader {
public:
    BinaryReader(std::span<const std::uint8_t> bytes, const BinaryTrailer& trailer)
        : trailer_{trailer}, objects_{bytes, trailer, bytes.size() + overlap_allowed},
          slots_(trailer.count) {}

    Owned read();

private:
    bool read_children();
    bool read_object(std::uint64_t object, bool as_key);
    void share_equal(std::uint64_t object);
    bool open_container(std::size_t object, std::size_t offset);
    void close_container();
    Owned made_of(OpenContainer& container);
    bool add_container(const Slot& container);
    void add_child(const Slot& slot);

    std::uint64_t ref(const OpenContainer& container, std::size_t child) const {
        return objects_.number(container.refs + container.ref_of(child) * trailer_.ref_width,
                               trailer_.ref_width);
    }

    BinaryTrailer trailer_;
    BinaryObjects objects_;
    std::vector<Slot> slots_;                     ///< By index.
    HashIndex by_value_;                          ///< Strings and data.
    const Dictionary* last_dictionary_ = nullptr; ///< The last one created.
    std::vector<OpenContainer> open_;
    std::vector<Owned> values_; ///< Children of open dictionaries and sets; finally, the root.
};

Owned BinaryReader::read() {
    if (!read_object(trailer_.root, false)) {
        return nullptr;
    }
    while (!open_.empty()) {
        if (!read_children()) {
            return nullptr;
        }
    }
    return std::move(values_.back());
}

/// Reads children of the innermost open container, up to its end or to a new open container.
bool BinaryReader::read_children() {
    const std::size_t depth = open_.size();
    do {
        OpenContainer& top = open_.back();
        if (top.next == top.children) {
            close_container();
            return true;
        }
        const std::size_t child = top.next++;
        if (!read_object(ref(top, child), top.is_key(child))) {
            return false;
        }
    } while (open_.size() == depth);
    return true;
}

/// Adds an object to the open container, or opens it when it is a new container. False when the
/// file is invalid.
bool BinaryReader::read_object(std::uint64_t object, bool as_key) {
    if (object >= trailer_.count || slots_[object].height == in_progress) {
        return false;
    }
    Slot& slot = slots_[object];
    if (slot.height == 0) {
        add_child(slot);
        return true;
    }
    if (slot.height != not_reached) {
        return !as_key && add_container(slot);
    }
    const std::uint64_t offset =
        objects_.number(trailer_.table + object * trailer_.offset_width, trailer_.offset_width);
    if (offset < binary_header_size) {
        return false;
    }
    if (is_container(objects_.marker(offset))) {
        return !as_key && open_container(object, offset);
    }
    slot.object = objects_.read_leaf(offset);
    if (!slot.object) {
        return false;
    }
    slot.height = 0;
    share_equal(object);
    add_child(slot);
    return true;
}

/// Replaces equal strings and data by one object and caches their hashes. Thus keys are compared by
/// address and hash, and many dictionaries with the same long keys take no more than linear time.
void BinaryReader::share_equal(std::uint64_t object) {
    Owned& leaf = slots_[object].object;
    if (leaf->kind != Kind::string && leaf->kind != Kind::data) {
        return;
    }
    if (object >= HashIndex::none) {
        throw std::length_error{"too many objects in a property list"};
    }
    const std::uint32_t first = by_value_.find_or_add(
        hash(leaf.get()), static_cast<std::uint32_t>(object),
        [&](std::uint32_t other) { return equal(slots_[other].object.get(), leaf.get()); });
    if (first != object) {
        leaf = share_unshared(slots_[first].object.get());
    }
}

bool BinaryReader::open_container(std::size_t object, std::size_t offset) {
    const Marker marker = objects_.marker(offset);
    const unsigned in_pairs = marker == Marker::dictionary ? 1 : 0;
    const auto refs = objects_.extent(offset, trailer_.ref_width << in_pairs);
    if (!refs || open_.size() + (refs->count > 0 ? 1 : 0) > max_levels) {
        return false;
    }
    slots_[object].height = in_progress;
    const bool is_array = marker == Marker::array;
    open_.push_back({.object = object,
                     .marker = marker,
                     .in_pairs = in_pairs,
                     .refs = refs->at,
                     .children = refs->count << in_pairs,
                     .first = values_.size(),
                     .array = is_array ? make_array_with_room(refs->count) : nullptr});
    return true;
}

/// Creates the innermost open container, whose children are complete.
void BinaryReader::close_container() {
    OpenContainer container = std::move(open_.back());
    open_.pop_back();
    Slot& slot = slots_[container.object];
    slot.object = made_of(container);
    slot.height = static_cast<std::uint16_t>(container.height);
    values_.resize(container.first);
    add_container(slot);
}

Owned BinaryReader::made_of(OpenContainer& container) {
    if (container.array) {
        return std::move(container.array);
    }
    const std::span<Owned> children = std::span{values_}.subspan(container.first);
    if (container.marker == Marker::set) {
        return make_set(children);
    }
    Owned dictionary = make_dictionary(children, Duplicates::first_wins, last_dictionary_);
    last_dictionary_ = &as<Dictionary>(dictionary.get());
    return dictionary;
}

/// Adds a finished container to the open one. False when the nesting would be too deep.
bool BinaryReader::add_container(const Slot& container) {
    if (open_.size() + container.height > max_levels + 1) {
        return false;
    }
    if (!open_.empty()) {
        open_.back().height = std::max<std::size_t>(open_.back().height, container.height + 1u);
    }
    add_child(container);
    return true;
}

/// Adds a reference to a finished object to the innermost open container, as its next child. If no
/// container is open, the object is the root.
void BinaryReader::add_child(const Slot& slot) {
    Owned value = share_unshared(slot.object.get());
    if (!open_.empty() && open_.back().array) {
        open_.back().array->take(std::move(value));
    } else {
        values_.push_back(std::move(value));
    }
}

} // namespace

Owned read_binary(std::span<const std::uint8_t> bytes, const BinaryTrailer& trailer) {
    if (trailer.count > trailer.table + overlap_allowed) {
        return nullptr;
    }
    return BinaryReader{bytes, trailer}.read();
}

} // namespace lumo::platform
