// The compact encodings of x86_64.
#include "loader/compact_unwind.h"

#include <array>
#include <cstring>

namespace lumo::macos {
namespace {

constexpr std::uint32_t mode_frame = 0x01000000, mode_large = 0x03000000;
constexpr int dwarf_rbp = 6, dwarf_rsp = 7, dwarf_rip = 16;
/// The registers that functions preserve, by their numbers in compact encodings, from 1.
constexpr std::array<int, 7> dwarf_number = {-1, 3, 12, 13, 14, 15, dwarf_rbp};

/// A function with a frame pointer: up to five registers, three bits each, by ascending address.
void write_frame_rules(FrameWriter& out, std::uint32_t encoding) {
    out.frame(dwarf_rbp, 16);
    out.saved(dwarf_rbp, 16);
    const std::uint64_t lowest = std::uint64_t{8} * (encoding >> 16 & 0xff);
    for (std::uint64_t i = 0; i < 5; ++i) {
        if (const auto saved = encoding >> 3 * i & 7; saved != 0) {
            out.saved(dwarf_number.at(saved), 16 + lowest - 8 * i);
        }
    }
}

/// The saved registers, by ascending address. `permutation` is the number of a permutation; each of
/// its digits is a position among the registers that remain.
std::vector<int> saved_registers(std::uint32_t count, std::uint32_t permutation) {
    std::vector<std::uint32_t> digits(count);
    for (std::uint32_t i = count; i-- > 0;) {
        digits[i] = permutation % (6 - i);
        permutation /= 6 - i;
    }
    std::vector<int> left = {1, 2, 3, 4, 5, 6}, saved;
    for (const std::uint32_t digit : digits) {
        saved.push_back(left.at(digit));
        left.erase(left.begin() + digit);
    }
    return saved;
}

/// A function without a frame pointer. The size of a large frame is in the function's code.
void write_frameless_rules(FrameWriter& out, const UnwindRecord& record) {
    const std::uint32_t encoding = record.encoding;
    std::uint64_t size = std::uint64_t{8} * (encoding >> 16 & 0xff);
    if ((encoding & unwind_mode_mask) == mode_large) {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the function's code, at its address in memory
        const auto* code = reinterpret_cast<const char*>(record.start);
        std::uint32_t subtracted = 0;
        std::memcpy(&subtracted, code + (encoding >> 16 & 0xff), sizeof subtracted);
        size = subtracted + std::uint64_t{8} * (encoding >> 13 & 7);
    }
    out.frame(dwarf_rsp, size);
    const std::uint32_t count = encoding >> 10 & 7;
    std::uint64_t below = 8 + std::uint64_t{8} * count;
    for (const int saved : saved_registers(count, encoding & 0x3ff)) {
        out.saved(dwarf_number.at(static_cast<std::size_t>(saved)), below);
        below -= 8;
    }
}

} // namespace

const int dwarf_return = dwarf_rip;

void write_common_rules(FrameWriter& out) {
    out.saved(dwarf_rip, 8);
}

bool has_rules(const UnwindRecord& record) {
    const std::uint32_t mode = record.encoding & unwind_mode_mask;
    return mode >= mode_frame && mode <= mode_large;
}

void write_rules(FrameWriter& out, const UnwindRecord& record) {
    if ((record.encoding & unwind_mode_mask) == mode_frame) {
        write_frame_rules(out, record.encoding);
    } else {
        write_frameless_rules(out, record);
    }
}

} // namespace lumo::macos
