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

std::string numbered_name(const fs::path& name, unsigned number) {
    return name.stem().string() + "-" + std::to_string(number) + name.extension().string();
}

/// Throws when `target` is not UTF-8: a state cannot contain such a path.
void require_utf8(const std::string& target, const std::string& source) {
    if (!is_utf8(target)) {
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
std::error_code try_copy(const std::string& source, const std::string& target) {
    const int result =
        copyfile(source.c_str(), target.c_str(), nullptr, COPYFILE_ALL | COPYFILE_CLONE);
    return {result == 0 ? 0 : errno, std::generic_category()};
}

/// Copies `sample` to `target`. False when `target` exists, placed by another process meanwhile.
/// Throws std::filesystem::filesystem_error when the copy fails, or when `target` is a dangling
/// link.
bool copy_sample(const SampleFile& sample, const std::string& target) {
    // A clone of a link would be a link; the link's target is copied instead.
    const std::string file = sample.is_link ? fs::canonical(sample.path).string() : sample.path;
    std::error_code error = try_copy(file, target);
    if (error && error != std::errc::file_exists) {
        // Throws if the sample was removed meanwhile. If the folder was removed, it is created
        // again.
        static_cast<void>(fs::file_size(sample.path));
        fs::create_directories(fs::path(target).parent_path());
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
    std::map<std::uintmax_t, std::string> of_size; ///< the first name of each size
    unsigned last = 0;                             ///< the highest number that was examined
};

/// The folder in the show for the samples of one folder.
struct Folder {
    std::string path;           ///< relative to the package
    std::optional<bool> is_new; ///< whether this import created it; nothing: not tried yet
};

/// Places the samples of one import in the show.
class Placement {
public:
    Placement(const std::string& package, Report& report)
        : package_((fs::path(package) / "").string()), report_(report) {}

    /// Places one sample; returns its path relative to the package.
    const std::string& place(const SampleFile& sample) {
        const std::uintmax_t size =
            sample.size == no_size ? fs::file_size(sample.path) : sample.size;
        const std::size_t name_at = sample.path.rfind('/') + 1; // 0 without a slash
        Folder& folder = folder_for(sample.path.substr(0, name_at));
        const std::string name = sample.path.substr(name_at);
        TakenNames& taken = seen_[folder.path + '/' + name];
        while (!taken.of_size.contains(size)) {
            const unsigned number = ++taken.last;
            const std::string candidate =
                folder.path + '/' + (number == 1 ? name : numbered_name(name, number));
            const std::string target = package_ + candidate;
            require_utf8(target, sample.path);
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
    /// The folder in the show for the samples of the folder `source`, which ends in a slash or is
    /// empty.
    Folder& folder_for(const std::string& source) {
        const auto [known, is_first] = folders_.try_emplace(source);
        if (is_first) {
            const std::string name = folder_name(source).string();
            known->second.path = name.empty() ? "samples" : "samples/" + name;
        }
        return known->second;
    }

    /// Whether a copy to `target`, in `folder`, should be tried: the folder is new or `target` does
    /// not exist.
    bool is_free(Folder& folder, const std::string& target) {
        if (!folder.is_new) {
            folder.is_new = make_folder(package_ + folder.path);
        }
        return *folder.is_new || !is_there(target);
    }

    std::string package_; ///< with a slash at the end, unless it is empty
    Report& report_;
    std::unordered_map<std::string, TakenNames> seen_;
    std::unordered_map<std::string, Folder> folders_; ///< by the samples' folder
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
        placed.emplace(key, placement.place(sample));
    }
    return placed;
}

} // namespace lumo::exs
