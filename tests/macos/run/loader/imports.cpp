// Finds an image's imports among the exports of the loaded images and the simulated functions.
#include "loader/parts.h"

namespace lumo::macos {
namespace {

constexpr int ordinal_self = 0, ordinal_program = -1, ordinal_any = -2, ordinal_weak = -3;

/// A weak definition is shared by all images: the first that is not weak, else the first.
void* find_weak(std::string_view name) {
    void* first = nullptr;
    for (const Image* image : loaded_images()) {
        if (const auto found = image->exports.find(name); found != image->exports.end()) {
            if (!found->second.is_weak) {
                return found->second.address;
            }
            first = first ? first : found->second.address;
        }
    }
    return first ? first : find_system(name);
}

} // namespace

void* find_anywhere(std::string_view name) {
    for (const Image* image : loaded_images()) {
        if (void* address = find_export(*image, name)) {
            return address;
        }
    }
    return find_system(name);
}

void* find_import(const Image& image, int ordinal, std::string_view name) {
    switch (ordinal) {
    case ordinal_self:
        return find_export(image, name);
    case ordinal_program:
        return find_export(*loaded_images().front(), name);
    case ordinal_any:
        return find_anywhere(name);
    case ordinal_weak:
        return find_weak(name);
    default:
        break;
    }
    const Image* library = image.libraries.at(static_cast<std::size_t>(ordinal - 1));
    return library ? find_export(*library, name) : find_system(name);
}

} // namespace lumo::macos
