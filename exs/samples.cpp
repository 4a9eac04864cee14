// A sample keeps its file name and the name of its folder on the way into the show: /old/Kit/a.wav
// becomes samples/Kit/a.wav, or samples/Kit/a-2.wav when another a.wav is there. Nothing in the
// show is ever overwritten, also not when several imports run at once.
#include "samples.h"

#include "base/utf8.h"

#include <copyfile.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <unordered_map>
#include <utility>

namespace lumo::exs {
namespace fs = std::filesystem;
namespace {

bool is_there(const fs::path& path) {
    std::error_code ignored;
    return fs::exists(fs::status(path, ignored));
}

constexpr std::uint64_t no_size = ~std::uint64_t{0};

/// The sample at `path`; nothing when nothing is there. One call suffices for a file.
std::optional<SampleFile> sample_at(const std::string& path) {
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    const bool is_link = S_ISLNK(status.st_mode);
    if (is_link && stat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    const bool is_file = S_ISREG(status.st_mode);
    return SampleFile{path, is_file ? static_cast<std::uint64_t>(status.st_size) : no_size,
                      is_link};
}

/// Where the load has found samples that moved, by their recorded paths.
using Relinked = std::unordered_map<std::string_view, const std::string*>;

Relinked relinked_by(const relink::Result& load) {
    Relinked relinked;
    for (const auto& [recorded, found] : load.relinked) {
        relinked.emplace(recorded, &found);
    }
    return relinked;
}

/// The sample that is recorded at `path`; nothing when it is not to be found, and `path` is then
/// where it was missed last.
std::optional<SampleFile> find_sample(std::string& path, const Relinked& relinked,
                                      const SampleIndex* index) {
    if (const auto known = relinked.find(path); known != relinked.end()) {
        if (std::optional<SampleFile> sample = sample_at(*known->second)) {
            return sample;
        }
    }
    std::optional<SampleFile> sample = sample_at(path);
    if (std::optional<std::string> moved; !sample && index && (moved = index->find(path))) {
        path = std::move(*moved);
        sample = sample_at(path);
    }
    return sample;
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

/// Makes `folder` unless it is there. Whether it is a new one, in which there is nothing yet. What
/// is in the way shows again when a sample is copied.
bool make_folder(const fs::path& folder) {
    std::error_code error;
    return fs::create_directory(folder, error) ||
           (error == std::errc::no_such_file_or_directory && fs::create_directories(folder, error));
}

/// An error of copyfile, or none.
std::error_code try_copy(const fs::path& source, const fs::path& target) {
    const int result =
        copyfile(source.c_str(), target.c_str(), nullptr, COPYFILE_ALL | COPYFILE_CLONE);
    return {result == 0 ? 0 : errno, std::generic_category()};
}

/// Copies `sample` to `target`. False when another process has placed something there meanwhile.
/// Throws when the copy fails, also for a link at `target` that leads nowhere.
bool copy_sample(const SampleFile& sample, const fs::path& target) {
    // A clone of a link would be a link: the show gets the file that it leads to.
    const fs::path file = sample.is_link ? fs::canonical(sample.path) : fs::path(sample.path);
    std::error_code error = try_copy(file, target);
    if (error && error != std::errc::file_exists) {
        // The sample or the folder may have gone since they were seen; the rest can be made anew.
        static_cast<void>(fs::file_size(sample.path));
        fs::create_directories(target.parent_path());
        error = error == std::errc::no_such_file_or_directory ? try_copy(file, target) : error;
    }
    if (error && (error != std::errc::file_exists || !is_there(target))) {
        throw fs::filesystem_error("copy failed", sample.path, target, error);
    }
    return !error;
}

/// What an import has seen under one name and its numbers. All of it stays, so that a name that
/// many samples have is gone through once and not by each of them.
struct TakenNames {
    std::map<std::uintmax_t, fs::path> of_size; ///< the first name of each size
    unsigned last = 0;                          ///< the number of the last name that was looked at
};

/// The samples of one import on their way into the show.
class Placement {
public:
    Placement(const std::string& package, Report& report) : package_(package), report_(report) {}

    /// Places one sample; returns its path relative to the package.
    fs::path place(const SampleFile& sample) {
        const fs::path source = sample.path;
        const std::uintmax_t size = sample.size == no_size ? fs::file_size(source) : sample.size;
        const fs::path folder = "samples" / folder_name(source);
        TakenNames& taken = seen_[folder / source.filename()];
        while (!taken.of_size.contains(size)) {
            const unsigned number = ++taken.last;
            const fs::path candidate =
                folder / (number == 1 ? source.filename() : numbered_name(source, number));
            const fs::path target = package_ / candidate;
            require_utf8(target, source);
            if (is_free(folder, target) && copy_sample(sample, target)) {
                report_.copied_bytes += size;
                taken.of_size.emplace(size, candidate);
            } else {
                taken.of_size.emplace(fs::file_size(target), candidate);
            }
        }
        return taken.of_size[size];
    }

private:
    /// Whether `target`, a name in `folder` that was not given out, is worth a copy.
    bool is_free(const fs::path& folder, const fs::path& target) {
        const auto [known, is_first] = is_new_.try_emplace(folder);
        if (is_first) {
            known->second = make_folder(package_ / folder);
        }
        return known->second || !is_there(target);
    }

    fs::path package_;
    Report& report_;
    std::map<fs::path, TakenNames> seen_;
    std::map<fs::path, bool> is_new_; ///< of each folder with samples, whether this import made it
};

} // namespace

std::optional<SampleFiles> find_samples(const References& references, const SampleIndex* index,
                                        Report& report) {
    const Relinked relinked = relinked_by(report.relink);
    std::set<std::string_view> seen;
    SampleFiles samples;
    for (const auto& [key, recorded] : references) {
        std::string path = recorded;
        std::optional<SampleFile> found = find_sample(path, relinked, index);
        if (!found) {
            report.error =
                "a sample wasn't found after loading: " + fs::path(path).filename().string();
            return std::nullopt;
        }
        const SampleFile& sample = samples.emplace(key, std::move(*found)).first->second;
        if (seen.insert(sample.path).second) {
            report.samples += 1;
            report.sample_bytes += sample.size;
        }
    }
    return samples;
}

References place_samples(const SampleFiles& samples, const std::string& package, Report& report) {
    References placed;
    Placement placement(package, report);
    for (const auto& [key, sample] : samples) {
        placed.emplace(key, placement.place(sample).string());
    }
    return placed;
}

} // namespace lumo::exs
