// Writes call frame information (.eh_frame) for the unwinder of this system.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

namespace lumo::macos {

class FrameWriter {
public:
    template <class Value>
    void put(Value value) {
        const auto* bytes = reinterpret_cast<const unsigned char*>(&value);
        bytes_.insert(bytes_.end(), bytes, bytes + sizeof value);
    }
    void byte(int value) { put(static_cast<unsigned char>(value)); }
    /// A number in groups of seven bits.
    void uleb(std::uint64_t value) {
        for (; value >= 0x80; value >>= 7) {
            byte(static_cast<int>(value & 0x7f) | 0x80);
        }
        byte(static_cast<int>(value));
    }
    /// Starts a record; end() writes its length.
    std::size_t begin() {
        put(std::uint32_t{0});
        return bytes_.size();
    }
    void end(std::size_t start) {
        while ((bytes_.size() - start) % 8 != 4) {
            byte(0); // DW_CFA_nop
        }
        const auto size = static_cast<std::uint32_t>(bytes_.size() - start);
        std::memcpy(&bytes_[start - 4], &size, 4);
    }
    /// The frame's address is `offset` bytes above the register `base`.
    void frame(int base, std::uint64_t offset) {
        byte(0x0c); // DW_CFA_def_cfa
        uleb(static_cast<std::uint64_t>(base));
        uleb(offset);
    }
    /// A register is saved `below` bytes under the frame's address.
    void saved(int dwarf, std::uint64_t below) {
        if (dwarf < 64) {
            byte(0x80 | dwarf); // DW_CFA_offset; the data alignment is -8
        } else {
            byte(5); // DW_CFA_offset_extended
            uleb(static_cast<std::uint64_t>(dwarf));
        }
        uleb(below / 8);
    }
    std::size_t size() const { return bytes_.size(); }
    std::vector<unsigned char> take() { return std::move(bytes_); }

private:
    std::vector<unsigned char> bytes_;
};

} // namespace lumo::macos
