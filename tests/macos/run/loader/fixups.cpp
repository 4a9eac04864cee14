// Chained fixups: each pointer of a segment that needs an address contains the distance to the
// next.
#include "loader/parts.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace lumo::macos {
namespace {

struct Import {
    int ordinal;
    bool is_weak;
    const char* name;
    std::int64_t addend;
};

Import read_import(const char* table, const char* names, std::uint32_t format, std::size_t index) {
    if (format == 3) {
        const auto word = as<std::uint64_t>(table + 16 * index);
        return {static_cast<std::int16_t>(word), (word >> 16 & 1) != 0, names + (word >> 32),
                as<std::int64_t>(table + 16 * index + 8)};
    }
    const std::size_t size = format == 2 ? 8 : 4;
    const auto word = as<std::uint32_t>(table + size * index);
    return {static_cast<std::int8_t>(word), (word >> 8 & 1) != 0, names + (word >> 9),
            format == 2 ? as<std::int32_t>(table + size * index + 4) : 0};
}

/// The addresses of all imports. A strong import that does not exist gets a missing_function.
std::vector<char*> resolve_imports(const Image& image, const char* data, const FixupsHeader& head) {
    std::vector<char*> addresses;
    for (std::size_t i = 0; i < head.imports; ++i) {
        const Import import = read_import(data + head.imports_offset, data + head.names_offset,
                                          head.imports_format, i);
        void* address = find_import(image, import.ordinal, import.name);
        if (!address && !import.is_weak) {
            if (std::getenv("LUMO_MACOS_MISSING")) {
                std::fprintf(stderr, "missing: %s (%s)\n", import.name, image.path.c_str());
            }
            address = missing_function(import.name);
        }
        // A library's own calls reach the originals of its own tuples.
        const bool is_own = std::any_of(image.tuples.begin(), image.tuples.end(),
                                        [&](const Tuple& t) { return t.original == address; });
        if (!is_own) {
            address = interposed(address);
        }
        addresses.push_back(static_cast<char*>(address) + (address ? import.addend : 0));
    }
    return addresses;
}

void fix_chain(Image& image, char* at, std::uint16_t format, const std::vector<char*>& imports) {
    for (;;) {
        const auto word = as<std::uint64_t>(at);
        const std::uint64_t next = word >> 51 & 0xfff;
        std::uint64_t value = 0;
        if (word >> 63) {
            char* import = imports.at(word & 0xffffff);
            value = import ? reinterpret_cast<std::uint64_t>(import + (word >> 24 & 0xff)) : 0;
        } else {
            const std::uint64_t target = word & 0xfffffffff, high = word >> 36 & 0xff;
            char* address = format == 2 ? image.at(target) : image.base + target;
            value = reinterpret_cast<std::uint64_t>(address) | high << 56;
        }
        std::memcpy(at, &value, sizeof value);
        if (next == 0) {
            return;
        }
        at += next * 4;
    }
}

} // namespace

void bind(Image& image) {
    if (image.is_bound || !image.fixups) {
        return;
    }
    image.is_bound = true;
    const char* data = image.link_data(image.fixups->offset);
    const auto& head = as<FixupsHeader>(data);
    const std::vector<char*> imports = resolve_imports(image, data, head);
    const char* starts = data + head.starts_offset;
    for (std::uint32_t i = 0; i < as<std::uint32_t>(starts); ++i) {
        const auto offset = as<std::uint32_t>(starts + 4 + std::size_t{4} * i);
        if (offset == 0) {
            continue;
        }
        const auto& segment = as<FixupStarts>(starts + offset);
        if (segment.pointer_format != 2 && segment.pointer_format != 6) {
            give_up(image.path + " has pointers of an unknown format");
        }
        const auto* first = reinterpret_cast<const std::uint16_t*>(&segment + 1);
        for (std::uint16_t p = 0; p < segment.pages; ++p) {
            if (first[p] != 0xffff) {
                fix_chain(image,
                          image.base + segment.segment_offset + std::size_t{p} * segment.page_size +
                              first[p],
                          segment.pointer_format, imports);
            }
        }
    }
}

} // namespace lumo::macos
