// The compact encodings of arm64.
#include "loader/compact_unwind.h"

namespace lumo::macos {
namespace {

constexpr std::uint32_t mode_frameless = 0x02000000, mode_frame = 0x04000000;
constexpr int dwarf_frame = 29, dwarf_link = 30, dwarf_stack = 31;

/// Pairs of registers, one bit for each pair, stored one below the other.
void write_pairs(FrameWriter& out, std::uint32_t encoding, std::uint64_t below) {
    constexpr struct {
        std::uint32_t bit;
        int dwarf;
    } pairs[] = {{0x1, 19},   {0x2, 21},   {0x4, 23},   {0x8, 25},  {0x10, 27},
                 {0x100, 72}, {0x200, 74}, {0x400, 76}, {0x800, 78}}; // x19, ... d8, ...
    for (const auto& pair : pairs) {
        if (encoding & pair.bit) {
            out.saved(pair.dwarf, below);
            out.saved(pair.dwarf + 1, below + 8);
            below += 16;
        }
    }
}

} // namespace

const int dwarf_return = dwarf_link;

void write_common_rules(FrameWriter&) {} // a call saves nothing

bool has_rules(const UnwindRecord& record) {
    const std::uint32_t mode = record.encoding & unwind_mode_mask;
    return mode == mode_frame || mode == mode_frameless;
}

void write_rules(FrameWriter& out, const UnwindRecord& record) {
    if ((record.encoding & unwind_mode_mask) == mode_frame) {
        out.frame(dwarf_frame, 16);
        out.saved(dwarf_frame, 16);
        out.saved(dwarf_link, 8);
        write_pairs(out, record.encoding, 24);
    } else { // the return address is still in its register
        out.frame(dwarf_stack, 16 * (record.encoding >> 12 & 0xfff));
        write_pairs(out, record.encoding, 8);
    }
}

} // namespace lumo::macos
