// macos-run PROGRAM [ARGUMENT]...: runs a Mac program for this processor on Linux, for tests.
//
// loader/ loads Mac images. libc++ is one of them; it is loaded from below the folder in
// LUMO_MACOS_ROOT, or from the folder set when this program was built. system/ simulates libSystem.
// CoreFoundation and AudioToolbox are the project's platform library (frameworks/).
#include "loader/image.h"
#include "system/system.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <unordered_map>

namespace lumo::macos {

void* find_system(std::string_view name) {
    static const auto table = [] {
        std::unordered_map<std::string_view, void*> all;
        for (const auto names :
             {attribute_names(), character_names(), copying_names(), error_names(), file_names(),
              folder_names(), framework_names(), locale_names(), mutex_names(), opening_names(),
              printing_names(), process_names(), regex_names(), same_names(), signal_names(),
              status_names(), stream_names(), thread_names(), variable_names()}) {
            for (const Name& row : names) {
                all.emplace(row.name, row.function);
            }
        }
        return all;
    }();
    // The functions that the simulated system lacks, as an older one does, each between two commas.
    static const std::string lacking =
        std::getenv("LUMO_MACOS_LACKS") ? std::getenv("LUMO_MACOS_LACKS") : "";
    if (!lacking.empty() && lacking.find("," + std::string(name) + ",") != std::string::npos) {
        return nullptr;
    }
    const auto found = table.find(name);
    return found == table.end() ? nullptr : found->second;
}

} // namespace lumo::macos

int main(int argc, char** argv, char** environment) {
    using namespace lumo::macos;
    if (argc < 2) {
        std::fputs("usage: macos-run PROGRAM [ARGUMENT]...\n", stderr);
        return 2;
    }
    const char* root = std::getenv("LUMO_MACOS_ROOT");
    prepare_variables(argc - 1, argv + 1);
    prepare_characters();
    Image& program = load_program(argv[1], root ? root : LUMO_MACOS_LIBCXX);
    std::string path = std::string("executable_path=") + argv[1];
    char* apple[] = {path.data(), nullptr};
    call_early();
    allow_thread_variables();
    initialise(program, argc - 1, argv + 1, environment, apple);
    using Main = int(int, char**, char**, char**);
    auto* start = reinterpret_cast<Main*>(program.base + program.entry);
    return start(argc - 1, argv + 1, environment, apple);
}
