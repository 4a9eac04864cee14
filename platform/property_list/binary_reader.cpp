// A binary property list is a table of objects that refer to each other by number, so the file
// decides whether they form a tree, a net or a circle. Each object is made once, when it is first
// met on the way down from the root. Containers under way stand on a stack of our own; a finished
// object's height is remembered, so that the depth of everything that is returned is bounded,
// however it is shared.
#include "property_list/binary_reader.h"

#include "core_foundation/objects.h"
#include "property_list/binary_format.h"
#include "property_list/limits.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <optional>
#include <vector>

namespace lumo::platform {
namespace {

/// Objects may overlap in the file. What they take together may exceed its size by so much only,
/// which stops a small file from holding containers without bound.
constexpr std::size_t overlap_allowed = 65536;

/// Heights of objects that have none yet: never met, and a container that is still open.
constexpr std::uint16_t unmet = std::numeric_limits<std::uint16_t>::max();
constexpr std::uint16_t under_way = unmet - 1;

/// Equal parts of the file: characters, bytes or references.
struct Extent {
    std::size_t at;
    std::size_t count;
};

/// A container under way. Its children that are finished are the values from `first` on.
struct OpenContainer {
    std::size_t object;
    Marker marker;
    std::size_t refs;     ///< Where its references begin.
    std::size_t children; ///< How many there are, keys counted.
    std::size_t first;
    std::size_t next = 0;   ///< The child to be read next.
    std::size_t height = 0; ///< One more than the highest child's; 0 without children.

    /// The keys of a dictionary come first in the file; here they take turns with the values.
    bool next_is_key() const { return marker == Marker::dictionary && next % 2 == 0; }
    std::size_t next_place() const {
        return marker == Marker::dictionary ? next / 2 + next % 2 * (children / 2) : next;
    }
};

bool is_container(Marker marker) {
    return marker == Marker::array || marker == Marker::set || marker == Marker::dictionary;
}

bool is_container(const Object& object) {
    return object.kind == Kind::array || object.kind == Kind::set ||
           object.kind == Kind::dictionary;
}

class BinaryReader {
public:
    BinaryReader(std::span<const std::uint8_t> bytes, const BinaryTrailer& trailer)
        : bytes_{bytes}, trailer_{trailer}, budget_{bytes.size() + overlap_allowed},
          objects_(trailer.count), heights_(trailer.count, unmet) {}

    Owned read();

private:
    bool read_children();
    bool read_object(std::uint64_t object, bool as_key);
    bool open_container(std::size_t object, std::size_t offset);
    void close_container();
    bool push(std::size_t object);

    Owned read_leaf(std::size_t offset);
    Owned read_single(std::size_t offset) const;
    Owned read_integer(std::size_t offset) const;
    Owned read_real(std::size_t offset) const;
    Owned read_date(std::size_t offset) const;
    Owned read_uid(std::size_t offset) const;
    Owned read_data(std::size_t offset);
    Owned read_ascii(std::size_t offset);
    Owned read_utf16(std::size_t offset);

    Marker marker(std::size_t offset) const { return static_cast<Marker>(bytes_[offset] >> 4); }
    std::uint8_t low_half(std::size_t offset) const { return bytes_[offset] & 0xF; }
    std::size_t room_after(std::size_t offset) const { return trailer_.table - offset - 1; }
    std::uint64_t number(std::size_t at, std::size_t width) const {
        return read_big_endian(&bytes_[at], width);
    }
    std::optional<Extent> extent(std::size_t offset, std::size_t width);

    std::span<const std::uint8_t> bytes_;
    BinaryTrailer trailer_;
    std::size_t budget_;                 ///< Bytes of the file that objects may still take.
    std::vector<Owned> objects_;         ///< Those made so far, by number.
    std::vector<std::uint16_t> heights_; ///< Levels below each of them.
    std::vector<OpenContainer> open_;
    std::vector<Owned> values_; ///< Children that wait for their container to end.
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

/// Goes on with the innermost open container, up to its end or to a container in it.
bool BinaryReader::read_children() {
    const std::size_t depth = open_.size();
    while (open_.size() == depth) {
        OpenContainer& top = open_.back();
        if (top.next == top.children) {
            close_container();
            return true;
        }
        const std::uint64_t ref =
            number(top.refs + top.next_place() * trailer_.ref_width, trailer_.ref_width);
        const bool as_key = top.next_is_key();
        ++top.next;
        if (!read_object(ref, as_key)) {
            return false;
        }
    }
    return true;
}

/// Puts an object on the values, or opens it when it is a container not met before.
bool BinaryReader::read_object(std::uint64_t object, bool as_key) {
    if (object >= trailer_.count || heights_[object] == under_way) {
        return false;
    }
    if (heights_[object] != unmet) {
        return !(as_key && is_container(*objects_[object])) && push(object);
    }
    const std::uint64_t offset =
        number(trailer_.table + object * trailer_.offset_width, trailer_.offset_width);
    if (offset < binary_header_size) {
        return false;
    }
    if (is_container(marker(offset))) {
        return !as_key && open_container(object, offset);
    }
    objects_[object] = read_leaf(offset);
    heights_[object] = 0;
    return objects_[object] && push(object);
}

bool BinaryReader::open_container(std::size_t object, std::size_t offset) {
    const bool in_pairs = marker(offset) == Marker::dictionary;
    const auto refs = extent(offset, trailer_.ref_width * (in_pairs ? 2 : 1));
    if (!refs || open_.size() > most_levels_in_binary) {
        return false;
    }
    heights_[object] = under_way;
    open_.push_back({.object = object,
                     .marker = marker(offset),
                     .refs = refs->at,
                     .children = refs->count * (in_pairs ? 2 : 1),
                     .first = values_.size()});
    return true;
}

/// Makes the innermost open container, all of whose children are there.
void BinaryReader::close_container() {
    const OpenContainer container = open_.back();
    const std::span<Owned> children = std::span{values_}.subspan(container.first);
    Owned& made = objects_[container.object];
    switch (container.marker) {
    case Marker::array:
        made = make_array(children);
        break;
    case Marker::set:
        made = make_set(children);
        break;
    default:
        made = make_dictionary(children, Duplicates::first_wins);
    }
    heights_[container.object] = static_cast<std::uint16_t>(container.height);
    values_.resize(container.first);
    open_.pop_back();
    push(container.object);
}

/// Hands a finished object to the open container. False when the two would be too deep.
bool BinaryReader::push(std::size_t object) {
    const std::size_t height = heights_[object];
    if (open_.size() + height > most_levels_in_binary) {
        return false;
    }
    if (!open_.empty()) {
        open_.back().height = std::max(open_.back().height, height + 1);
    }
    values_.push_back(share_unshared(objects_[object].get()));
    return true;
}

Owned BinaryReader::read_leaf(std::size_t offset) {
    switch (marker(offset)) {
    case Marker::single:
        return read_single(offset);
    case Marker::integer:
        return read_integer(offset);
    case Marker::real:
        return read_real(offset);
    case Marker::date:
        return read_date(offset);
    case Marker::data:
        return read_data(offset);
    case Marker::ascii:
        return read_ascii(offset);
    case Marker::utf16:
        return read_utf16(offset);
    case Marker::uid:
        return read_uid(offset);
    default:
        return nullptr;
    }
}

Owned BinaryReader::read_single(std::size_t offset) const {
    switch (bytes_[offset]) {
    case marker_null:
        return make_null();
    case marker_false:
        return make_boolean(false);
    case marker_true:
        return make_boolean(true);
    default:
        return nullptr;
    }
}

/// Up to 4 bytes have no sign. Of 16 bytes CoreFoundation takes the low 8, without a sign either.
Owned BinaryReader::read_integer(std::size_t offset) const {
    const std::size_t width = std::size_t{1} << low_half(offset);
    if (width > 16 || width > room_after(offset)) {
        return nullptr;
    }
    const std::uint64_t value = number(offset + 1, width);
    return width == 16 ? make_integer_128(0, value)
                       : make_integer(static_cast<std::int64_t>(value));
}

/// Infinity and NaN are doubles whatever their width.
Owned BinaryReader::read_real(std::size_t offset) const {
    const std::size_t width = std::size_t{1} << low_half(offset);
    if ((width != 4 && width != 8) || width > room_after(offset)) {
        return nullptr;
    }
    const std::uint64_t bits = number(offset + 1, width);
    if (width == 8) {
        return make_real(std::bit_cast<double>(bits));
    }
    const auto single = std::bit_cast<float>(static_cast<std::uint32_t>(bits));
    return std::isfinite(single) ? make_real32(single) : make_real(static_cast<double>(single));
}

Owned BinaryReader::read_date(std::size_t offset) const {
    if (low_half(offset) != 3 || room_after(offset) < 8) {
        return nullptr;
    }
    return make_date(std::bit_cast<double>(number(offset + 1, 8)));
}

Owned BinaryReader::read_uid(std::size_t offset) const {
    const std::size_t width = low_half(offset) + std::size_t{1};
    if (width > room_after(offset)) {
        return nullptr;
    }
    const std::uint64_t value = number(offset + 1, width);
    const bool fits = value <= std::numeric_limits<std::uint32_t>::max();
    return fits ? make_uid(static_cast<std::uint32_t>(value)) : nullptr;
}

Owned BinaryReader::read_data(std::size_t offset) {
    const auto data = extent(offset, 1);
    return data ? make_data(bytes_.subspan(data->at, data->count)) : nullptr;
}

/// Bytes from 0x80 on, which have no place here, are taken as ISO-8859-1.
Owned BinaryReader::read_ascii(std::size_t offset) {
    const auto text = extent(offset, 1);
    if (!text) {
        return nullptr;
    }
    const auto* characters = reinterpret_cast<const char*>(&bytes_[text->at]);
    return make_string_latin1({characters, text->count});
}

/// CoreFoundation refuses an empty one, since it allocates room for none of its units.
Owned BinaryReader::read_utf16(std::size_t offset) {
    const auto text = extent(offset, 2);
    return text && text->count > 0 ? make_string_utf16be(&bytes_[text->at], text->count) : nullptr;
}

/// What follows the marker at `offset`: so many parts of `width` bytes as it tells, perhaps in an
/// integer behind it. Nothing when they do not fit in front of the table.
std::optional<Extent> BinaryReader::extent(std::size_t offset, std::size_t width) {
    std::size_t at = offset + 1;
    std::uint64_t count = low_half(offset);
    if (count == count_follows) {
        if (room_after(offset) == 0 || marker(at) != Marker::integer) {
            return std::nullopt;
        }
        const std::size_t count_width = std::size_t{1} << low_half(at);
        if (count_width > room_after(at)) {
            return std::nullopt;
        }
        count = number(at + 1, count_width);
        at += 1 + count_width;
    }
    if (count > (trailer_.table - at) / width || count * width > budget_) {
        return std::nullopt;
    }
    budget_ -= count * width;
    return Extent{at, count};
}

} // namespace

Owned read_binary(std::span<const std::uint8_t> bytes, const BinaryTrailer& trailer) {
    return BinaryReader{bytes, trailer}.read();
}

} // namespace lumo::platform
