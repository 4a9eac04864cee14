// A sample keeps its file name and the name of its folder on the way into the show: /old/Kit/a.wav
// becomes samples/Kit/a.wav, or samples/Kit/a-2.wav when another a.wav is there. Nothing in the
// show is ever overwritten, also not when several imports run at once.
#include "samples.h"

#include "base/utf8.h"

#include <copyfile.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace lumo::exs {
namespace fs = std::filesystem;
namespace {

bool is_there(const fs::path& path) {
    std::error_code ignored;
    return fs::exists(fs::status(path, ignored));
}

/// The size of what is at `path`, all ones when it has none that can be read; nothing when nothing
/// is there. One look suffices for a file that is.
std::optional<std::uint64_t> size_if_there(const fs::path& path) {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(path, error);
    return !error || is_there(path) ? std::optional<std::uint64_t>(size) : std::nullopt;
}

/// The name of the folder that holds `source`: the true one where the path says "..".
fs::path folder_name(const fs::path& source) {
    const fs::path name = source.parent_path().filename();
    return name == ".." ? fs::canonical(source.parent_path()).filename() : name;
}

fs::path numbered_name(const fs::path& source, unsigned number) {
    fs::path name = source.stem();
    name += "-" + std::to_string(number);
    name += source.extension();
    return name;
}

/// A path that is not UTF-8 cannot stand in a state.
void require_utf8(const fs::path& target, const fs::path& source) {
    if (!is_utf8(target.native())) {
        throw fs::filesystem_error("not a UTF-8 name", source, target,
                                   std::make_error_code(std::errc::illegal_byte_sequence));
    }
}

/// Copies `source` to `target`. False when another process has placed something there meanwhile.
/// Throws when the copy fails, also for a link at `target` that leads nowhere.
bool copy_sample(const fs::path& source, const fs::path& target) {
    fs::create_directories(target.parent_path());
    // A clone of a link would be a link: the show gets the file that it leads to.
    const fs::path file = fs::is_symlink(source) ? fs::canonical(source) : source;
    if (copyfile(file.c_str(), target.c_str(), nullptr, COPYFILE_ALL | COPYFILE_CLONE) == 0) {
        return true;
    }
    const std::error_code error(errno, std::generic_category());
    if (error == std::errc::file_exists && is_there(target)) {
        return false;
    }
    throw fs::filesystem_error("copy failed", source, target, error);
}

/// What an import has seen under one name and its numbers. All of it stays, so that a name that
/// many samples have is gone through once and not by each of them.
struct TakenNames {
    std::map<std::uintmax_t, fs::path> of_size; ///< the first name of each size
    unsigned last = 0;                          ///< the number of the last name that was looked at
};
using NamesSeen = std::map<fs::path, TakenNames>;

/// Places one sample; returns its path relative to the package.
fs::path place(const fs::path& source, const fs::path& package, NamesSeen& seen,
               std::uint64_t& copied_bytes) {
    const std::uintmax_t size = fs::file_size(source);
    const fs::path folder = "samples" / folder_name(source);
    TakenNames& taken = seen[folder / source.filename()];
    while (!taken.of_size.contains(size)) {
        const unsigned number = ++taken.last;
        const fs::path candidate =
            folder / (number == 1 ? source.filename() : numbered_name(source, number));
        const fs::path target = package / candidate;
        require_utf8(target, source);
        if (!is_there(target) && copy_sample(source, target)) {
            copied_bytes += size;
            taken.of_size.emplace(size, candidate);
        } else {
            taken.of_size.emplace(fs::file_size(target), candidate);
        }
    }
    return taken.of_size[size];
}

} // namespace

bool find_samples(References& samples, const SampleIndex* index, Report& report) {
    std::set<std::string_view> seen;
    for (auto& [key, path] : samples) {
        std::optional<std::uint64_t> size = size_if_there(path);
        if (std::optional<std::string> moved; !size && index && (moved = index->find(path))) {
            path = std::move(*moved);
            size = size_if_there(path);
        }
        if (!size) {
            report.error =
                "a sample wasn't found after loading: " + fs::path(path).filename().string();
            return false;
        }
        if (seen.insert(path).second) {
            report.samples += 1;
            report.sample_bytes += *size;
        }
    }
    return true;
}

References place_samples(const References& samples, const std::string& package, Report& report) {
    References placed;
    NamesSeen seen;
    for (const auto& [key, path] : samples) {
        placed.emplace(key, place(path, package, seen, report.copied_bytes).string());
    }
    return placed;
}

} // namespace lumo::exs
