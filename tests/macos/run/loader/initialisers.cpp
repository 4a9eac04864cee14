// The initialisers of an image, which run before the program's main.
#include "loader/parts.h"

#include <cstdint>
#include <utility>

namespace lumo::macos {

void initialise(Image& image, int argc, char** argv, char** environment, char** apple) {
    if (std::exchange(image.is_initialised, true)) {
        return;
    }
    for (Image* library : image.libraries) {
        if (library) {
            initialise(*library, argc, argv, environment, apple);
        }
    }
    using Initialiser = void(int, char**, char**, char**, void*);
    for (const Section* section : image.sections) {
        const std::uint32_t kind = section->flags & section_kind;
        const char* words = image.at(section->address);
        for (std::size_t i = 0; kind == section_initialisers && i < section->size / 8; ++i) {
            as<Initialiser*>(words + 8 * i)(argc, argv, environment, apple, nullptr);
        }
        for (std::size_t i = 0; kind == section_initialiser_offsets && i < section->size / 4; ++i) {
            reinterpret_cast<Initialiser*>(image.base + as<std::uint32_t>(words + 4 * i))(
                argc, argv, environment, apple, nullptr);
        }
    }
}

} // namespace lumo::macos
