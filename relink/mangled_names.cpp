// Programs for Mac OS 9 saw file names of at most 31 characters: "12_Legacy_Pulsar_SH1#3BA81A.wav"
// is the short form of a longer name. It has the start of the name, "#" with the file's number in
// hexadecimal digits, and the extension. Such names are rare, so a linear search of the whole index
// is enough.
#include "mangled_names.h"

#include "sample_names.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>

namespace lumo::exs::relink {
namespace {

constexpr std::ptrdiff_t mangled_length = 31;
constexpr std::size_t min_digits = 4;

std::ptrdiff_t count_characters(std::string_view text) {
    return std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; });
}

/// The keys of the parts of the long name that a mangled name preserves.
struct Remains {
    std::string start;
    std::string extension; // including the dot
};

std::optional<Remains> parse(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    const std::size_t mark = name.rfind('#', dot);
    if (count_characters(name) != mangled_length || dot == std::string_view::npos ||
        mark == std::string_view::npos || mark == 0) {
        return std::nullopt;
    }
    const std::string_view digits = name.substr(mark + 1, dot - mark - 1);
    if (digits.size() < min_digits ||
        digits.find_first_not_of("0123456789ABCDEF") != std::string_view::npos) {
        return std::nullopt;
    }
    Remains remains;
    make_key(name.substr(0, mark), remains.start);
    make_key(name.substr(dot), remains.extension);
    return remains;
}

} // namespace

const SampleIndex::Entry* find_by_mangled_name(const SampleIndex& index, std::string_view name) {
    const std::optional<Remains> remains = parse(name);
    if (!remains) {
        return nullptr;
    }
    const SampleIndex::Entry* found = nullptr;
    for (const auto& [key, entries] : index.files) {
        if (!key.starts_with(remains->start) || !key.ends_with(remains->extension)) {
            continue;
        }
        for (const SampleIndex::Entry& entry : entries) {
            if (count_characters(file_name(entry.path)) <= mangled_length) {
                continue;
            }
            if (found && found->path != entry.path) {
                return nullptr;
            }
            found = &entry;
        }
    }
    return found;
}

} // namespace lumo::exs::relink
