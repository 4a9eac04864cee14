// Sizes are computed before writing: the sizes of the objects give the offset of the table, which
// gives the width of the offsets, so every part is written in place once.
#include "property_list/binary_writer.h"

#include "core_foundation/objects.h"
#include "property_list/binary_format.h"
#include "property_list/object_graph.h"

#include <algorithm>
#include <bit>
#include <span>

namespace lumo::platform {
namespace {

/// The width of an integer object that holds `value`: 1, 2, 4 or 8 bytes.
std::size_t width_of(std::uint64_t value) {
    if (value <= 0xFF) {
        return 1;
    }
    return value <= 0xFFFF ? 2 : value <= 0xFFFFFFFF ? 4 : 8;
}

/// The width of references and offsets up to `limit`. CoreFoundation never writes 3 bytes but reads
/// them, and they suffice for most states.
std::size_t index_width(std::uint64_t limit) {
    return limit > 0xFFFF && limit <= 0xFFFFFF ? 3 : width_of(limit);
}

/// The size of a marker with a count; a count that does not fit in the marker follows as an
/// integer.
std::size_t head_size(std::size_t count) {
    return count < count_follows ? 1 : 2 + width_of(count);
}

std::size_t number_size(const Number& number) {
    switch (number.number_kind()) {
    case NumberKind::integer: // negative integers always have 8 bytes
        return 1 + width_of(static_cast<std::uint64_t>(number.integer));
    case NumberKind::wide_integer:
        return 1 + 16;
    case NumberKind::real32:
        return 1 + 4;
    default:
        return 1 + 8;
    }
}

std::size_t string_size(const String& string) {
    return head_size(string.length) + string.length * std::size_t{string.is_ascii() ? 1u : 2u};
}

std::size_t size_of(const ObjectGraph::Node& node, std::size_t ref_width) {
    switch (node.object->kind) {
    case Kind::number:
        return number_size(as<Number>(node.object));
    case Kind::string:
        return string_size(as<String>(node.object));
    case Kind::data:
        return head_size(as<Data>(node.object).length) + as<Data>(node.object).length;
    case Kind::date:
        return 1 + 8;
    case Kind::uid:
        return 1 + width_of(as<Uid>(node.object).value);
    case Kind::array:
        return head_size(node.ref_count) + node.ref_count * ref_width;
    case Kind::dictionary:
        return head_size(node.ref_count / 2) + node.ref_count * ref_width;
    default:
        return 1;
    }
}

/// Writes to a buffer whose size was computed before.
class Output {
public:
    explicit Output(std::uint8_t* start) : start_{start}, at_{start} {}

    std::size_t size() const { return static_cast<std::size_t>(at_ - start_); }

    void put(std::uint64_t value, std::size_t width) {
        for (std::size_t i = width; i-- > 0;) {
            *at_++ = static_cast<std::uint8_t>(value >> (8 * i));
        }
    }
    void put_bytes(const void* bytes, std::size_t size) {
        at_ = std::copy_n(static_cast<const std::uint8_t*>(bytes), size, at_);
    }
    void put_marker(Marker marker, std::size_t low_half) {
        *at_++ = static_cast<std::uint8_t>(static_cast<std::size_t>(marker) << 4 | low_half);
    }
    /// A marker and a number of `width` bytes, a power of two.
    void put_sized(Marker marker, std::uint64_t value, std::size_t width) {
        put_marker(marker, static_cast<std::size_t>(std::countr_zero(width)));
        put(value, width);
    }
    void put_head(Marker marker, std::size_t count) {
        put_marker(marker, std::min<std::size_t>(count, count_follows));
        if (count >= count_follows) {
            put_sized(Marker::integer, count, width_of(count));
        }
    }

private:
    std::uint8_t* start_;
    std::uint8_t* at_;
};

void put_number(Output& out, const Number& number) {
    const auto integer = static_cast<std::uint64_t>(number.integer);
    switch (number.number_kind()) {
    case NumberKind::integer:
        out.put_sized(Marker::integer, integer, width_of(integer));
        break;
    case NumberKind::wide_integer:
        out.put_marker(Marker::integer, 4);
        out.put(static_cast<std::uint64_t>(static_cast<const WideNumber&>(number).high), 8);
        out.put(integer, 8);
        break;
    case NumberKind::real32:
        out.put_sized(Marker::real, std::bit_cast<std::uint32_t>(static_cast<float>(number.real)),
                      4);
        break;
    case NumberKind::real:
        out.put_sized(Marker::real, std::bit_cast<std::uint64_t>(number.real), 8);
        break;
    }
}

void put_string(Output& out, const String& string) {
    if (string.is_ascii()) {
        out.put_head(Marker::ascii, string.length);
        out.put_bytes(string.ascii().data(), string.length);
        return;
    }
    out.put_head(Marker::utf16, string.length);
    for (const char16_t unit : string.utf16()) {
        out.put(unit, 2);
    }
}

void put_data(Output& out, const Data& data) {
    out.put_head(Marker::data, data.length);
    out.put_bytes(data.bytes().data(), data.length);
}

void put_uid(Output& out, const Uid& uid) {
    const std::size_t width = width_of(uid.value);
    out.put_marker(Marker::uid, width - 1);
    out.put(uid.value, width);
}

void put_refs(Output& out, std::span<const std::uint32_t> refs, std::size_t ref_width) {
    for (const std::uint32_t ref : refs) {
        out.put(ref, ref_width);
    }
}

void put_object(Output& out, ObjectGraph& graph, const ObjectGraph::Node& node,
                std::size_t ref_width) {
    switch (node.object->kind) {
    case Kind::boolean:
        out.put(boolean_value(*node.object) ? marker_true : marker_false, 1);
        break;
    case Kind::number:
        put_number(out, as<Number>(node.object));
        break;
    case Kind::string:
        put_string(out, as<String>(node.object));
        break;
    case Kind::data:
        put_data(out, as<Data>(node.object));
        break;
    case Kind::date:
        out.put_sized(Marker::date, std::bit_cast<std::uint64_t>(as<Date>(node.object).time), 8);
        break;
    case Kind::uid:
        put_uid(out, as<Uid>(node.object));
        break;
    case Kind::array:
        out.put_head(Marker::array, node.ref_count);
        put_refs(out, graph.refs_of(node), ref_width);
        break;
    case Kind::dictionary:
        out.put_head(Marker::dictionary, node.ref_count / 2);
        put_refs(out, graph.refs_of(node), ref_width);
        break;
    default: // collect_objects rejects other kinds
        break;
    }
}

void put_trailer(Output& out, std::size_t offset_width, std::size_t ref_width, std::size_t count,
                 std::size_t table) {
    out.put(0, 6); // unused bytes and the sort version
    out.put(offset_width, 1);
    out.put(ref_width, 1);
    out.put(count, 8);
    out.put(0, 8); // the root
    out.put(table, 8);
}

Owned write_graph(ObjectGraph& graph) {
    const std::size_t count = graph.nodes.size();
    const std::size_t ref_width = index_width(count);
    std::size_t table = binary_header_size;
    for (const ObjectGraph::Node& node : graph.nodes) {
        table += size_of(node, ref_width);
    }
    const std::size_t offset_width = index_width(table);

    std::uint8_t* bytes = nullptr;
    Owned data = make_data(table + count * offset_width + binary_trailer_size, &bytes);
    Output objects{bytes};
    Output rest{bytes + table};
    objects.put_bytes("bplist00", binary_header_size);
    for (const ObjectGraph::Node& node : graph.nodes) {
        rest.put(objects.size(), offset_width);
        put_object(objects, graph, node, ref_width);
    }
    put_trailer(rest, offset_width, ref_width, count, table);
    return data;
}

} // namespace

Owned write_binary(const Object* root) {
    auto graph = collect_objects(root);
    return graph && arrange_objects(*graph) ? write_graph(*graph) : nullptr;
}

} // namespace lumo::platform
