// Names are checked for every file of a disk, so the common case takes few instructions: an
// extension is compared as one integer, and an ASCII name is folded without Unicode tables.
#include "sample_names.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace lumo::exs::relink {
namespace {

/// Up to four characters as one integer, ignoring case.
constexpr std::uint32_t packed(std::string_view extension) {
    std::uint32_t value = 0;
    for (const char c : extension) {
        value = value << 8 | static_cast<unsigned char>(to_lower(c));
    }
    return value;
}

constexpr std::array sample_extensions{
    packed("wav"),  packed("wave"), packed("bwf"),  packed("rf64"), packed("w64"),  packed("aif"),
    packed("aiff"), packed("aifc"), packed("caf"),  packed("sd2"),  packed("snd"),  packed("au"),
    packed("mp3"),  packed("mp2"),  packed("mpa"),  packed("m4a"),  packed("m4b"),  packed("m4r"),
    packed("mp4"),  packed("3gp"),  packed("3g2"),  packed("aac"),  packed("adts"), packed("ac3"),
    packed("ec3"),  packed("amr"),  packed("flac"), packed("ogg"),  packed("oga"),  packed("opus"),
    packed("sf2"),  packed("dls"), // sound banks
};

/// Stores `name` in `key` in lower case if it is ASCII; else returns false, with `key` undefined.
bool make_ascii_key(std::string_view name, std::string& key) {
    key.resize(name.size());
    std::transform(name.begin(), name.end(), key.begin(), to_lower);
    return std::all_of(name.begin(), name.end(), is_ascii);
}

} // namespace

bool is_sample_name(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || name.front() == '.') {
        return false;
    }
    const std::string_view extension = name.substr(dot + 1);
    return extension.size() <= 4 && std::find(sample_extensions.begin(), sample_extensions.end(),
                                              packed(extension)) != sample_extensions.end();
}

bool is_sample_path(std::string_view path) {
    if (!is_sample_name(file_name(path))) {
        return false;
    }
    for (std::size_t begin = 0, end = 0; end != std::string_view::npos; begin = end + 1) {
        end = path.find('/', begin);
        const std::string_view component = path.substr(begin, end - begin);
        if (component == ".AppleDouble" || component == "..namedfork") {
            return false;
        }
    }
    return true;
}

void make_key(std::string_view name, std::string& key) {
    if (!make_ascii_key(name, key) && !make_unicode_key(name, key)) {
        key = name;
    }
}

} // namespace lumo::exs::relink
