// The library is opened by the name that a program linked to it would have recorded, and thus found
// where that program would find it.
#include "sampler/sound_file_library.h"

#include <dlfcn.h>

#include <optional>

namespace lumo::platform {
namespace {

constexpr const char* file_name = "libsndfile.so.1";

template <class Function>
bool find_function(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

std::optional<SoundFileLibrary> load() {
    SoundFileLibrary functions{};
    void* library = dlopen(file_name, RTLD_LAZY | RTLD_LOCAL);
    if (library && find_function(library, "sf_open_virtual", functions.open_virtual) &&
        find_function(library, "sf_close", functions.close)) {
        return functions;
    }
    return std::nullopt;
}

} // namespace

const SoundFileLibrary* sound_file_library() {
    static const std::optional<SoundFileLibrary> library = load();
    return library ? &*library : nullptr;
}

} // namespace lumo::platform
