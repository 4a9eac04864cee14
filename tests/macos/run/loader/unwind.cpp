// Converts the compact unwind information of an image to the call frame information that the
// unwinder of this system reads: one record for each function, with the rules of its body. Neither
// form has rules for a prologue, because no exception is thrown there.
#include "loader/compact_unwind.h"

#include <deque>
#include <map>
#include <string_view>

// NOLINTNEXTLINE(bugprone-reserved-identifier): the name is libgcc's
extern "C" void __register_frame_table(void* lists);

namespace lumo::macos {
namespace {

/// These bytes are never moved or freed: the unwinder keeps pointers to them.
std::deque<std::vector<unsigned char>> kept;
std::deque<std::vector<void*>> kept_lists;

/// The record that functions of one personality share: addresses are absolute.
std::size_t write_common(FrameWriter& out, std::uint64_t personality) {
    const std::size_t start = out.begin();
    out.put(std::uint32_t{0});
    out.byte(1);
    for (const char c : std::string_view(personality ? "zPLR" : "zR")) {
        out.byte(c);
    }
    out.byte(0);
    out.uleb(1);    // code alignment
    out.byte(0x78); // data alignment, -8
    out.uleb(static_cast<std::uint64_t>(dwarf_return));
    out.uleb(personality ? 11 : 1);
    if (personality) {
        out.byte(0);
        out.put(personality);
        out.byte(0);
    }
    out.byte(0);
    write_common_rules(out);
    out.end(start);
    return start - 4;
}

void write_function(FrameWriter& out, std::size_t common, const UnwindRecord& record) {
    const std::size_t start = out.begin();
    out.put(static_cast<std::uint32_t>(out.size() - common));
    out.put(record.start);
    out.put(record.size);
    out.uleb(record.personality ? 8 : 0);
    if (record.personality) {
        out.put(record.lsda);
    }
    write_rules(out, record);
    out.end(start);
}

} // namespace

void register_unwind_information(const Image& image) {
    // Rules that the compact form cannot express are in .eh_frame, which ends with the zeros after
    // the section. Both are registered as one list, because libgcc uses only one of two lists that
    // overlap.
    std::vector<void*> both;
    if (const Section* section = image.section("__eh_frame")) {
        both.push_back(image.at(section->address));
    }
    if (const Section* section = image.section("__unwind_info")) {
        FrameWriter out;
        std::map<std::uint64_t, std::size_t> common;
        for (const UnwindRecord& record : read_compact_unwind(image, *section)) {
            if (!has_rules(record) || record.size == 0) {
                continue;
            }
            const auto [place, is_new] = common.try_emplace(record.personality, 0);
            if (is_new) {
                place->second = write_common(out, record.personality);
            }
            write_function(out, place->second, record);
        }
        out.put(std::uint32_t{0});
        kept.push_back(out.take());
        both.push_back(kept.back().data());
    }
    if (!both.empty()) {
        both.push_back(nullptr);
        kept_lists.push_back(std::move(both));
        __register_frame_table(kept_lists.back().data());
    }
}

} // namespace lumo::macos
