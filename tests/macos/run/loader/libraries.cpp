// Finds and maps the program's file and the files of its libraries.
#include "loader/parts.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace lumo::macos {
namespace {

std::vector<std::unique_ptr<Image>> owned;
std::vector<Image*> loaded;

std::vector<char> read_file(const std::string& path) {
    std::vector<char> bytes;
    const int file = ::openat(AT_FDCWD, path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status {};
    if (file < 0 || ::fstat(file, &status) != 0) {
        give_up("cannot read " + path);
    }
    bytes.resize(static_cast<std::size_t>(status.st_size));
    if (::pread(file, bytes.data(), bytes.size(), 0) != status.st_size) {
        give_up("cannot read " + path);
    }
    ::close(file);
    return bytes;
}

std::string folder_of(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash);
}

bool exists(const std::string& path) {
    return ::access(path.c_str(), F_OK) == 0;
}

/// The path of a library's file; empty for one that this program simulates.
std::string find_library(const Image& program, const std::string& root, const std::string& name) {
    if (const char* folder = std::getenv("DYLD_LIBRARY_PATH")) { // one folder
        std::string path = folder + name.substr(name.rfind('/'));
        if (exists(path)) {
            return path;
        }
    }
    if (!name.starts_with("@rpath/")) {
        return exists(root + name) ? root + name : "";
    }
    // The program may have been started through a link.
    const std::unique_ptr<char, decltype(&std::free)> real(
        ::realpath(program.path.c_str(), nullptr), &std::free);
    for (const std::string& start : {program.path, std::string(real ? real.get() : "")}) {
        for (std::string run_path : program.run_paths) {
            for (const std::string_view prefix : {"@executable_path", "@loader_path"}) {
                if (run_path.starts_with(prefix)) {
                    run_path.replace(0, prefix.size(), folder_of(start));
                }
            }
            std::string path = run_path + name.substr(std::strlen("@rpath"));
            if (exists(path)) {
                return path;
            }
        }
    }
    give_up("no " + name + " for " + program.path);
}

/// Maps an image and its libraries, each once. `program` is null for the program itself.
Image& map_image(const std::string& path, const std::string& root, const Image* program) {
    for (Image* image : loaded) {
        if (image->path == path) {
            return *image;
        }
    }
    owned.push_back(std::make_unique<Image>());
    Image& image = *owned.back();
    image.path = path;
    const std::vector<char> file = read_file(path);
    map_segments(image, part_for_this_processor(file, path));
    loaded.push_back(&image);
    read_exports(image);
    for (const std::string& name : image.library_names) {
        const std::string library = find_library(program ? *program : image, root, name);
        image.libraries.push_back(
            library.empty() ? nullptr : &map_image(library, root, program ? program : &image));
    }
    return image;
}

} // namespace

const std::vector<Image*>& loaded_images() {
    return loaded;
}

Image& map_program(const std::string& path, const std::string& root) {
    return map_image(path, root, nullptr);
}

} // namespace lumo::macos
