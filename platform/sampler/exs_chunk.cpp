// A chunk is a header of 84 bytes followed by its content; the next chunk follows immediately:
//
//      3  u8   type in the lower six bits, flags above
//      4  u32  size of the content
//     16  4cc  magic, which gives the byte order of all numbers in the chunk
//     20  64   name, NUL-terminated unless it fills the field
//
// The type is in the fourth byte in either byte order. Flag 0x80 marks files whose sizes have 15
// bits, with other data in the bits above; flag 0x40 has no effect.
#include "sampler/exs_chunk.h"

#include "sampler/exs_text.h"

#include <algorithm>
#include <string_view>

namespace lumo::platform {
namespace {

constexpr std::uint8_t short_size_flag = 0x80;

std::optional<bool> big_endian_by_magic(std::span<const std::uint8_t> magic) {
    const std::string_view text(reinterpret_cast<const char*>(magic.data()), magic.size());
    if (text == "TBOS" || text == "JBOS") {
        return false;
    }
    if (text == "SOBT" || text == "SOBJ") {
        return true;
    }
    return std::nullopt;
}

} // namespace

std::optional<ExsChunk> ExsChunk::first_of(std::span<const std::uint8_t> file) {
    if (file.size() < header_size) {
        return std::nullopt;
    }
    const std::optional<bool> big_endian = big_endian_by_magic(file.subspan(16, 4));
    if (!big_endian) {
        return std::nullopt;
    }
    std::size_t content = ExsChunk(file.first(header_size), *big_endian).u32(4);
    if (file[3] & short_size_flag) {
        content &= 0x7FFF;
    }
    if (content > file.size() - header_size) {
        return std::nullopt;
    }
    return ExsChunk(file.first(header_size + content), *big_endian);
}

std::uint8_t ExsChunk::type() const {
    return bytes_[3] & 0x3F;
}

std::uint8_t ExsChunk::u8(std::size_t offset, std::uint8_t absent) const {
    return holds(offset, 1) ? bytes_[offset] : absent;
}

std::int8_t ExsChunk::s8(std::size_t offset) const {
    return static_cast<std::int8_t>(u8(offset));
}

std::uint16_t ExsChunk::u16(std::size_t offset) const {
    if (!holds(offset, 2)) {
        return 0;
    }
    const unsigned first = bytes_[offset];
    const unsigned second = bytes_[offset + 1];
    return static_cast<std::uint16_t>(big_endian_ ? first << 8 | second : second << 8 | first);
}

std::uint32_t ExsChunk::u32(std::size_t offset) const {
    if (!holds(offset, 4)) {
        return 0;
    }
    const std::uint32_t first = u16(offset);
    const std::uint32_t second = u16(offset + 2);
    return big_endian_ ? first << 16 | second : second << 16 | first;
}

std::int32_t ExsChunk::s32(std::size_t offset, std::int32_t absent) const {
    return holds(offset, 4) ? static_cast<std::int32_t>(u32(offset)) : absent;
}

std::string ExsChunk::text(std::size_t offset, std::size_t room) const {
    if (!holds(offset, 0)) {
        return {};
    }
    const auto field = bytes_.subspan(offset, std::min(room, bytes_.size() - offset));
    return exs_text(
        field.first(static_cast<std::size_t>(std::ranges::find(field, 0) - field.begin())));
}

} // namespace lumo::platform
