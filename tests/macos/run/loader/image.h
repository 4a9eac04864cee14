// A Mach-O program or library in memory, and all of them together.
#pragma once

#include "loader/mach_o.h"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace lumo::macos {

/// A name that an image exports, and its address.
struct Export {
    void* address;
    bool is_weak;
};

/// One file in memory. Its commands and names point into that memory, which is never freed.
struct Image {
    std::string path;
    char* base = nullptr; ///< the header's address, from which offsets count
    std::vector<const SegmentCommand*> segments;
    std::vector<const Section*> sections;
    std::vector<std::string> library_names; ///< in the order of their numbers in fixups
    std::vector<Image*> libraries;          ///< the same; null for one that this program simulates
    std::vector<std::string> run_paths;
    std::map<std::string, Export, std::less<>> exports;
    std::vector<Tuple> tuples;
    const DataCommand* fixups = nullptr;
    const DataCommand* exports_trie = nullptr;
    std::uint64_t entry = 0;
    std::uint64_t preferred = 0; ///< the address that the file was linked for
    bool is_bound = false, is_initialised = false;

    const MachHeader& header() const { return *reinterpret_cast<const MachHeader*>(base); }
    char* at(std::uint64_t address) const { return base + (address - preferred); }
    char* link_data(std::uint32_t file_offset) const;
    const Section* section(std::string_view name) const;
};

/// Loads the program and its libraries. A library in /usr/lib is loaded from below `system_root` if
/// it exists there. Ends the process by give_up on failure.
Image& load_program(const std::string& path, const std::string& system_root);

/// The exported name of an image; a leading underscore belongs to it.
void* find_export(const Image& image, std::string_view name);

/// The address of a name in the first image that exports it, else that of the simulated function or
/// variable; null if there is none.
void* find_anywhere(std::string_view name);

/// The function that a call of `function` from the system's own libraries reaches: its replacement
/// in a loaded library's interpose section, or the function itself.
void* interposed(void* function);

/// Runs the initialisers, libraries first.
void initialise(Image& image, int argc, char** argv, char** environment, char** apple);

/// Registers the contents of the image's unwind sections with the unwinder of this system.
void register_unwind_information(const Image& image);

/// The address of a variable of the calling thread, for the first word of its descriptor.
extern "C" void* lumo_thread_variable(ThreadVariable* variable);

/// Allows programs to use thread-local variables from here on, as libSystem's initialiser does.
void allow_thread_variables();

/// The function or variable that simulates a name of libSystem or a framework, null for none.
void* find_system(std::string_view name);

/// Ends the process with status 99 after printing `what` on standard error.
[[noreturn]] void give_up(const std::string& what);

} // namespace lumo::macos
