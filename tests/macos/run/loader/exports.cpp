// The names that an image exports: a tree in which each edge is a piece of a name.
#include "loader/parts.h"

#include <cstdint>

namespace lumo::macos {
namespace {

std::uint64_t uleb(const unsigned char*& at) {
    std::uint64_t value = 0;
    for (int shift = 0;; shift += 7) {
        value |= std::uint64_t{*at & 0x7fu} << shift;
        if (!(*at++ & 0x80)) {
            return value;
        }
    }
}

void read_node(Image& image, const unsigned char* trie, std::uint64_t node,
               const std::string& name) {
    const unsigned char* at = trie + node;
    const std::uint64_t size = uleb(at);
    const unsigned char* children = at + size;
    if (size != 0) {
        const std::uint64_t flags = uleb(at);
        if (flags & export_elsewhere) {
            give_up(image.path + " exports a name of another library: " + name);
        }
        image.exports[name] = {image.base + uleb(at), (flags & export_weak) != 0};
    }
    for (int count = *children++; count > 0; --count) {
        const std::string longer = name + reinterpret_cast<const char*>(children);
        children += longer.size() - name.size() + 1;
        read_node(image, trie, uleb(children), longer);
    }
}

} // namespace

void read_exports(Image& image) {
    if (image.exports_trie && image.exports_trie->size != 0) {
        const char* trie = image.link_data(image.exports_trie->offset);
        read_node(image, reinterpret_cast<const unsigned char*>(trie), 0, "");
    }
}

void* find_export(const Image& image, std::string_view name) {
    const auto found = image.exports.find(name);
    return found == image.exports.end() ? nullptr : found->second.address;
}

} // namespace lumo::macos
