// The compact unwind information of an image (__unwind_info): one encoding for each function.
#pragma once

#include "loader/frame_writer.h"
#include "loader/image.h"

#include <cstdint>
#include <vector>

namespace lumo::macos {

/// The information about one function. Addresses are those in memory; 0 means none.
struct UnwindRecord {
    std::uint64_t start, size;
    std::uint32_t encoding;
    std::uint64_t lsda, personality;
};

constexpr std::uint32_t unwind_mode_mask = 0x0f000000;

/// The functions of the section, by ascending address.
std::vector<UnwindRecord> read_compact_unwind(const Image& image, const Section& section);

// What depends on the processor: unwind_x86_64.cpp or unwind_arm64.cpp.

/// The DWARF number of the register with the return address.
extern const int dwarf_return;

/// Writes the rules that apply at the entry of every function.
void write_common_rules(FrameWriter& out);

/// Whether the encoding contains the rules; otherwise they are in .eh_frame, or there are none.
bool has_rules(const UnwindRecord& record);

/// Writes the rules of a function's body.
void write_rules(FrameWriter& out, const UnwindRecord& record);

} // namespace lumo::macos
