// One chunk of an EXS24 file: access to fields by offset, with defaults for missing fields.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace lumo::platform {

/// A chunk, in either byte order. Borrows the bytes of the file.
class ExsChunk {
public:
    static constexpr std::size_t header_size = 84;

    enum Type : std::uint8_t { instrument = 0, zone = 1, group = 2, sample = 3, parameters = 4 };

    /// The chunk at the start of `file`; nothing when there is none or it exceeds the file.
    static std::optional<ExsChunk> first_of(std::span<const std::uint8_t> file);

    /// A Type, or the type number of another chunk, 0 to 63.
    std::uint8_t type() const;
    /// The size of header and content in bytes.
    std::size_t size() const { return bytes_.size(); }

    /// Whether the chunk contains `count` bytes at `offset`.
    bool holds(std::size_t offset, std::size_t count) const {
        return offset <= bytes_.size() && bytes_.size() - offset >= count;
    }
    /// The fields at `offset` from the start of the chunk's header; `absent` (or 0) when the field
    /// exceeds the chunk.
    std::uint8_t u8(std::size_t offset, std::uint8_t absent = 0) const;
    std::int8_t s8(std::size_t offset) const;
    std::uint16_t u16(std::size_t offset) const;
    std::uint32_t u32(std::size_t offset) const;
    std::int32_t s32(std::size_t offset, std::int32_t absent = 0) const;
    /// The text in a field of `room` bytes (fewer at the end of the chunk), up to the first NUL, in
    /// UTF-8.
    std::string text(std::size_t offset, std::size_t room) const;
    /// The chunk's own name.
    std::string name() const { return text(20, 64); }

private:
    ExsChunk(std::span<const std::uint8_t> bytes, bool big_endian)
        : bytes_(bytes), big_endian_(big_endian) {}

    std::span<const std::uint8_t> bytes_;
    bool big_endian_;
};

} // namespace lumo::platform
