// Folders that can be reached without a link are read first, then those behind links, the smallest
// path first. A folder is identified by device and inode and read once. Therefore cycles end, and
// the paths do not depend on the order in which a disk lists its entries.
#include "instrument_walk.h"

#include "apple_library.h"
#include "directory.h"
#include "text.h"

#include <dirent.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <map>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

namespace lumo::library {
namespace fs = std::filesystem;
namespace {

using exs::relink::is_in_apple_library;

std::string joined(const std::string& folder, std::string_view name) {
    std::string path;
    path.reserve(folder.size() + 1 + name.size());
    path += folder;
    path += folder.ends_with('/') ? "" : "/";
    return path += name;
}

/// The path without links, "." and ".."; empty when it does not exist.
std::string real_path(const std::string& path) {
    std::error_code error;
    const fs::path real = fs::canonical(path, error);
    return error ? std::string() : real.string();
}

/// Whether the name of a file that is not hidden has the extension of an instrument, in any letter
/// case.
bool is_instrument_name(std::string_view name) {
    const std::string_view extension = name.substr(std::min(name.rfind('.'), name.size()));
    const auto is = [&](std::string_view wanted) {
        return extension.size() == wanted.size() &&
               strncasecmp(extension.data(), wanted.data(), wanted.size()) == 0;
    };
    return is(".exs") || is(".aupreset");
}

class Walk {
public:
    explicit Walk(const WalkProgress& progress) : progress_(progress) {}

    void take_argument(const std::string& path) {
        std::error_code error;
        if (fs::is_directory(path, error)) {
            waiting_.emplace(path, real_path(path));
        } else {
            add(path, real_path(path), fs::is_symlink(fs::symlink_status(path, error)));
        }
    }

    void run() {
        read_waiting();
        while (!links_.empty()) {
            const std::string folder = std::move(links_.extract(links_.begin()).value());
            waiting_.emplace(folder, real_path(folder));
            read_waiting();
        }
    }

    Instruments result() {
        Instruments found;
        for (auto& [real, name] : files_) {
            found.paths.push_back(std::move(name.second));
        }
        std::sort(found.paths.begin(), found.paths.end());
        std::set<std::string_view> folders;
        for (const std::string& path : found.paths) {
            folders.insert(folder_of(path));
        }
        found.folders = folders.size();
        found.unreadable.assign(unreadable_.begin(), unreadable_.end());
        return found;
    }

private:
    void read_waiting() {
        while (!waiting_.empty()) {
            const auto folder = waiting_.extract(waiting_.begin());
            read_folder(folder.key(), folder.mapped());
        }
    }

    /// Reads the folder at `path`; `real` is the same path without links.
    void read_folder(const std::string& path, const std::string& real) {
        struct stat status {};
        if (stat(path.c_str(), &status) != 0) {
            unreadable_.insert(path);
            return;
        }
        if (!read_.emplace(status.st_dev, status.st_ino).second || is_in_apple_library(path) ||
            is_in_apple_library(real)) {
            return;
        }
        const std::size_t before = files_.size();
        const auto take = [&](std::string_view name, unsigned char type) {
            take_entry(path, real, name, type);
        };
        if (!read_visible_entries(path, take)) {
            unreadable_.insert(path);
        }
        folders_ += files_.size() > before ? 1 : 0;
        if (!progress_(files_.size(), folders_)) {
            waiting_.clear();
            links_.clear();
        }
    }

    void take_entry(const std::string& folder, const std::string& real, std::string_view name,
                    unsigned char type) {
        const bool is_instrument = is_instrument_name(name);
        if (type == DT_LNK) {
            take_link(joined(folder, name), is_instrument);
        } else if (type == DT_DIR) {
            waiting_.emplace(joined(folder, name), joined(real, name));
        } else if (type == DT_REG && is_instrument) {
            add(joined(folder, name), joined(real, name), false);
        }
    }

    void take_link(const std::string& path, bool is_instrument) {
        std::error_code error;
        const fs::file_status target = fs::status(path, error);
        if (fs::is_directory(target)) {
            links_.insert(path);
        } else if (is_instrument) {
            const std::string real = real_path(path);
            if (real.empty()) {
                unreadable_.insert(path);
            } else if (fs::is_regular_file(target) && !is_in_apple_library(real)) {
                add(path, real, true);
            }
        }
    }

    void add(const std::string& path, const std::string& real, bool is_link) {
        const std::pair<bool, std::string> name(is_link, path);
        const auto [file, is_new] = files_.emplace(real, name);
        if (!is_new) {
            file->second = std::min(file->second, name);
        }
    }

    const WalkProgress& progress_;
    std::map<std::string, std::string> waiting_; // folders to read, with their real paths
    std::set<std::string> links_;                // links to folders
    std::set<std::pair<dev_t, ino_t>> read_;
    /// By real path: whether the name is a link, and the name.
    std::map<std::string, std::pair<bool, std::string>> files_;
    std::set<std::string> unreadable_;
    std::size_t folders_ = 0; // in which instruments were found
};

} // namespace

std::string fault_of_argument(const std::string& path) {
    std::error_code error;
    const int rights = fs::is_directory(path, error) ? R_OK | X_OK : R_OK;
    return access(path.c_str(), rights) == 0 ? std::string() : std::strerror(errno);
}

Instruments find_instruments(const std::vector<std::string>& arguments,
                             const WalkProgress& progress) {
    Walk walk(progress);
    for (const std::string& argument : arguments) {
        walk.take_argument(argument);
    }
    walk.run();
    return walk.result();
}

} // namespace lumo::library
