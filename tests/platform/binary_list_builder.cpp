// Writes the objects, the offset table and the trailer; nothing is checked.
#include "platform/binary_list_builder.h"

namespace lumo::test {

std::string big_endian(std::uint64_t value, std::size_t width) {
    std::string bytes(width, '\0');
    for (std::size_t i = 0; i < width && i < sizeof value; ++i) {
        bytes[width - 1 - i] = static_cast<char>(value >> (8 * i) & 0xFF);
    }
    return bytes;
}

std::string BinaryList::bytes() const {
    std::string file = "bplist00";
    std::string table;
    for (const std::string& object : objects) {
        table += big_endian(file.size(), offset_width);
        file += object;
    }
    const std::size_t table_offset = file.size();
    return file + table + std::string(6, '\0') + big_endian(offset_width, 1) +
           big_endian(ref_width, 1) + big_endian(objects.size(), 8) + big_endian(root, 8) +
           big_endian(table_offset, 8);
}

BinaryList nested_arrays(std::size_t depth) {
    BinaryList list{.objects = {}, .offset_width = 4, .ref_width = 4};
    for (std::size_t i = 1; i < depth; ++i) {
        list.objects.push_back("\xA1" + big_endian(i, 4));
    }
    list.objects.push_back("\xA0");
    return list;
}

} // namespace lumo::test
