// One function per marker. Odd objects are handled as in CoreFoundation.
#include "property_list/binary_objects.h"

#include "core_foundation/encodings.h"
#include "core_foundation/objects.h"

#include <bit>
#include <cmath>
#include <limits>

namespace lumo::platform {

Owned BinaryObjects::read_leaf(std::size_t offset) {
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

Owned BinaryObjects::read_single(std::size_t offset) const {
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

/// Integers of up to 4 bytes are unsigned. Of 16 bytes CoreFoundation uses only the low 8, as an
/// unsigned value.
Owned BinaryObjects::read_integer(std::size_t offset) const {
    const std::size_t width = std::size_t{1} << low_half(offset);
    if (width > 16 || width > room_after(offset)) {
        return nullptr;
    }
    const std::uint64_t value = number(offset + 1, width);
    return width == 16 ? make_integer_128(0, value)
                       : make_integer(static_cast<std::int64_t>(value));
}

/// Infinity and NaN become doubles, whatever their width.
Owned BinaryObjects::read_real(std::size_t offset) const {
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

Owned BinaryObjects::read_date(std::size_t offset) const {
    if (low_half(offset) != 3 || room_after(offset) < 8) {
        return nullptr;
    }
    return make_date(std::bit_cast<double>(number(offset + 1, 8)));
}

Owned BinaryObjects::read_uid(std::size_t offset) const {
    const std::size_t width = low_half(offset) + std::size_t{1};
    if (width > room_after(offset)) {
        return nullptr;
    }
    const std::uint64_t value = number(offset + 1, width);
    const bool fits = value <= std::numeric_limits<std::uint32_t>::max();
    return fits ? make_uid(static_cast<std::uint32_t>(value)) : nullptr;
}

Owned BinaryObjects::read_data(std::size_t offset) {
    const auto data = extent(offset, 1);
    return data ? make_data(bytes_.subspan(data->at, data->count)) : nullptr;
}

/// Bytes from 0x80 on, which are invalid here, are decoded as ISO-8859-1.
Owned BinaryObjects::read_ascii(std::size_t offset) {
    const auto text = extent(offset, 1);
    if (!text) {
        return nullptr;
    }
    const auto* characters = reinterpret_cast<const char*>(&bytes_[text->at]);
    return make_string_latin1({characters, text->count});
}

/// An empty string is rejected, as in CoreFoundation, which allocates no storage for it.
Owned BinaryObjects::read_utf16(std::size_t offset) {
    const auto text = extent(offset, 2);
    if (!text || text->count == 0) {
        return nullptr;
    }
    const auto* units = reinterpret_cast<const char*>(&bytes_[text->at]);
    return decode({units, text->count * 2}, kCFStringEncodingUTF16BE, false);
}

std::optional<Extent> BinaryObjects::extent(std::size_t offset, std::size_t width) {
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
    if (count > (table_ - at) / width || count * width > budget_) {
        return std::nullopt;
    }
    budget_ -= count * width;
    return Extent{at, count};
}

} // namespace lumo::platform
