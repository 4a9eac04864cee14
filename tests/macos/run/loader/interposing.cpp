// Interposing, by the rules of dyld's published sources: only libraries may interpose; a tuple with
// an absent original is ignored; calls from the library itself reach the original.
#include "loader/parts.h"

#include <cstdlib>
#include <cstring>
#include <unordered_map>

namespace lumo::macos {
namespace {

std::unordered_map<void*, void*> replacements;

bool is_interpose_section(const Section& section) {
    const std::string_view name(section.name, strnlen(section.name, sizeof section.name));
    const std::string_view segment(section.segment, strnlen(section.segment, 16));
    return (section.flags & section_kind) == section_interposing ||
           (name == "__interpose" &&
            (segment.starts_with("__DATA") || segment.starts_with("__AUTH")));
}

/// Reads the tuples of a library. It is bound first, so that the tuples contain addresses.
void read_tuples(Image& image) {
    for (const Section* section : image.sections) {
        if (is_interpose_section(*section)) {
            bind(image);
            const auto* tuples = reinterpret_cast<const Tuple*>(image.at(section->address));
            image.tuples.insert(image.tuples.end(), tuples, tuples + section->size / sizeof(Tuple));
        }
    }
}

} // namespace

void read_all_tuples() {
    const Image* program = loaded_images().front();
    for (Image* image : loaded_images()) {
        if (image != program) {
            read_tuples(*image);
        }
    }
    // A system may refuse to interpose; it then ignores the tuples without a message. The test of
    // the shims' tests omits a single tuple.
    const bool is_refused = std::getenv("LUMO_MACOS_NO_INTERPOSING") != nullptr;
    const char* without = std::getenv("LUMO_MACOS_WITHOUT_TUPLE");
    for (const Image* image : loaded_images()) {
        for (const Tuple& tuple : image->tuples) {
            const bool is_left_out =
                without && std::to_string(&tuple - image->tuples.data()) == without;
            const bool is_absent = !tuple.original; // a weak import that the system lacks
            if (!is_refused && !is_left_out && !is_absent) {
                replacements.emplace(tuple.original, tuple.replacement);
            }
        }
    }
}

void* interposed(void* function) {
    const auto found = replacements.find(function);
    return found == replacements.end() ? function : found->second;
}

} // namespace lumo::macos
