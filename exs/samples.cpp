// A sample keeps its file name and the name of its folder in the show: /old/Kit/a.wav becomes
// samples/Kit/a.wav, or samples/Kit/a-2.wav when another a.wav exists there. No file in the show is
// ever overwritten, even when several imports run at the same time.
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

/// The sample at `path`; nothing when it does not exist. Makes one system call for a file, two for
/// a link.
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

/// The files that were used for moved samples during the load, by recorded path.
using Relinked = std::unordered_map<std::string_view, const std::string*>;

Relinked relinked_by(const relink::Result& load) {
    Relinked relinked;
    for (const auto& [recorded, found] : load.relinked) {
        relinked.emplace(recorded, &found);
    }
    return relinked;
}

/// The sample recorded at `path`; nothing when it is not found, in which case `path` is the last
/// path that was tried.
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

/// The name of the folder that contains `source`; resolves "..".
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

/// Throws when `target` is not UTF-8: a state cannot contain such a path.
void require_utf8(const fs::path& target, const fs::path& source) {
    if (!is_utf8(target.native())) {
        throw fs::filesystem_error("not a UTF-8 name", source, target,
                                   std::make_error_code(std::errc::illegal_byte_sequence));
    }
}

/// Creates `folder` if necessary; returns whether it is new, and therefore empty. Errors are
/// ignored: copying a sample into the folder fails with the same error.
bool make_folder(const fs::path& folder) {
    std::error_code error;
    return fs::create_directory(folder, error) ||
           (error == std::errc::no_such_file_or_directory && fs::create_directories(folder, error));
}

/// The error of copyfile, or none.
std::error_code try_copy(const fs::path& source, const fs::path& target) {
    const int result =
        copyfile(source.c_str(), target.c_str(), nullptr, COPYFILE_ALL | COPYFILE_CLONE);
    return {result == 0 ? 0 : errno, std::generic_category()};
}

/// Copies `sample` to `target`. False when `target` exists, placed by another process meanwhile.
/// Throws std::filesystem::filesystem_error when the copy fails, or when `target` is a dangling
/// link.
bool copy_sample(const SampleFile& sample, const fs::path& target) {
    // A clone of a link would be a link; the link's target is copied instead.
    const fs::path file = sample.is_link ? fs::canonical(sample.path) : fs::path(sample.path);
    std::error_code error = try_copy(file, target);
    if (error && error != std::errc::file_exists) {
        // Throws if the sample was removed meanwhile. If the folder was removed, it is created
        // again.
        static_cast<void>(fs::file_size(sample.path));
        fs::create_directories(target.parent_path());
        error = error == std::errc::no_such_file_or_directory ? try_copy(file, target) : error;
    }
    if (error && (error != std::errc::file_exists || !is_there(target))) {
        throw fs::filesystem_error("copy failed", sample.path, target, error);
    }
    return !error;
}

/// The files of one name and its numbered variants, as found or placed by this import. They are
/// kept, so that each is examined once even if many samples have the name.
struct TakenNames {
    std::map<std::uintmax_t, fs::path> of_size; ///< the first name of each size
    unsigned last = 0;                          ///< the highest number that was examined
};

/// Places the samples of one import in the show.
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
    /// Whether a copy to `target`, in `folder`, should be tried: the folder is new or `target` does
    /// not exist.
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
    std::map<fs::path, bool> is_new_; ///< whether this import created a folder
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
