// Reads a Mach-O file's load commands and maps its segments into memory.
#include "loader/parts.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace lumo::macos {
namespace {

std::uint32_t big_endian(const char* bytes) {
    std::uint32_t value;
    std::memcpy(&value, bytes, sizeof value);
    return __builtin_bswap32(value);
}

const char* text_of(const LoadCommand& command, std::uint32_t offset) {
    return reinterpret_cast<const char*>(&command) + offset;
}

void read_segment(Image& image, const SegmentCommand& segment) {
    if (segment.file_offset == 0 && segment.file_size != 0) {
        image.preferred = segment.address;
    }
    if (segment.size != 0 && segment.protection != 0) {
        image.segments.push_back(&segment);
    }
    const auto* sections = reinterpret_cast<const Section*>(&segment + 1);
    for (std::uint32_t i = 0; i < segment.sections; ++i) {
        image.sections.push_back(&sections[i]);
    }
}

/// Reads the load commands that follow the header at `header`.
void read_commands(Image& image, const char* header) {
    const auto& head = as<MachHeader>(header);
    const char* at = header + sizeof(MachHeader);
    for (std::uint32_t i = 0; i < head.commands; ++i) {
        const auto& command = as<LoadCommand>(at);
        switch (command.kind) {
        case command_segment:
            read_segment(image, as<SegmentCommand>(at));
            break;
        case command_dylib:
        case command_weak_dylib:
        case command_reexported_dylib:
            image.library_names.emplace_back(text_of(command, as<DylibCommand>(at).name_offset));
            break;
        case command_run_path:
            image.run_paths.emplace_back(text_of(command, as<TextCommand>(at).text_offset));
            break;
        case command_entry:
            image.entry = as<EntryCommand>(at).offset;
            break;
        case command_exports:
            image.exports_trie = &as<DataCommand>(at);
            break;
        case command_fixups:
            image.fixups = &as<DataCommand>(at);
            break;
        case command_old_fixups:
            give_up(image.path + " has fixups of the old kind");
        default:
            break;
        }
        at += command.size;
    }
}

} // namespace

std::span<const char> part_for_this_processor(std::span<const char> file, const std::string& path) {
    std::uint32_t magic = 0;
    std::memcpy(&magic, file.data(), std::min(sizeof magic, file.size()));
    if (magic == magic_64 && as<MachHeader>(file.data()).processor == processor_here) {
        return file;
    }
    if (magic == magic_fat) {
        for (std::uint32_t i = 0; i < big_endian(&file[4]); ++i) {
            const char* entry = &file[8 + 20 * i];
            if (big_endian(entry) == processor_here) {
                return file.subspan(big_endian(entry + 8), big_endian(entry + 12));
            }
        }
    }
    give_up(path + " has no part for this processor");
}

void map_segments(Image& image, std::span<const char> file) {
    read_commands(image, file.data());
    std::uint64_t end = 0;
    for (const SegmentCommand* segment : image.segments) {
        if (segment->address % page != 0 || segment->file_offset % page != 0) {
            give_up(image.path + " has a segment that begins within a page");
        }
        end = std::max(end, segment->address + segment->size - image.preferred);
    }
    // One page more, because this system's pages may be smaller.
    void* memory = ::mmap(nullptr, (end + page - 1) / page * page + page, PROT_READ | PROT_WRITE,
                          MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        give_up("no memory for " + image.path);
    }
    image.base = static_cast<char*>(memory);
    image.base += -reinterpret_cast<std::uintptr_t>(memory) % page;
    for (const SegmentCommand* segment : image.segments) {
        std::copy_n(file.data() + segment->file_offset, segment->file_size,
                    image.at(segment->address));
    }
    // From here on the commands in memory are used; the file is not needed any more.
    image.segments.clear();
    image.sections.clear();
    image.library_names.clear();
    image.run_paths.clear();
    read_commands(image, image.base);
}

void protect(const Image& image) {
    for (const SegmentCommand* segment : image.segments) {
        const int writable = segment->flags & segment_read_only ? 0 : segment->protection & 2;
        const int protection = (segment->protection & 1 ? PROT_READ : 0) |
                               (writable ? PROT_WRITE : 0) |
                               (segment->protection & 4 ? PROT_EXEC : 0);
        ::mprotect(image.at(segment->address), segment->size, protection);
        __builtin___clear_cache(image.at(segment->address),
                                image.at(segment->address) + segment->size);
    }
}

} // namespace lumo::macos
