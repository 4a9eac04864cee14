// An image in memory, loading a program, and the end of the process after a failure. The order is
// that of the system's loader: map everything, read the interpose sections, bind everything (with
// the tuples applied), run the initialisers.
#include "loader/image.h"

#include "loader/parts.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace lumo::macos {

char* Image::link_data(std::uint32_t file_offset) const {
    for (const SegmentCommand* segment : segments) {
        if (file_offset >= segment->file_offset &&
            file_offset < segment->file_offset + segment->file_size) {
            return at(segment->address) + (file_offset - segment->file_offset);
        }
    }
    give_up(path + " has data outside its segments");
}

const Section* Image::section(std::string_view name) const {
    for (const Section* section : sections) {
        if (std::string_view(section->name, strnlen(section->name, 16)) == name) {
            return section;
        }
    }
    return nullptr;
}

Image& load_program(const std::string& path, const std::string& system_root) {
    Image& program = map_program(path, system_root);
    read_all_tuples();
    for (Image* image : loaded_images()) {
        bind(*image);
        prepare_thread_variables(*image);
        protect(*image);
        register_unwind_information(*image);
    }
    return program;
}

void give_up(const std::string& what) {
    std::fprintf(stderr, "macos-run: %s\n", what.c_str());
    std::_Exit(99);
}

} // namespace lumo::macos
