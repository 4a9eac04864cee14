// Folders that can be reached without a link are read first, then those behind links, the smallest
// path first. A folder is identified by device and inode and read once. Therefore cycles end, and
// the paths do not depend on the order in which a disk lists its entries.
#include "instrument_walk.h"

#include "apple_library.h"

#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <map>
#include <set>
#include <system_error>
#include <utility>

namespace lumo::library {
namespace fs = std::filesystem;
namespace {

using exs::relink::is_in_apple_library;

std::string joined(const std::string& folder, const std::string& name) {
    return folder.ends_with('/') ? folder + name : folder + '/' + name;
}

/// The path without links, "." and ".."; empty when it does not exist.
std::string real_path(const std::string& path) {
    std::error_code error;
    const fs::path real = fs::canonical(path, error);
    return error ? std::string() : real.string();
}

class Walk {
public:
    explicit Walk(const WalkProgress& progress) : progress_(progress) {}

    void take_argument(const std::string& path) {
        std::error_code error;
        if (fs::is_directory(path, error)) {
            waiting_.insert(path);
        } else {
            add(path, real_path(path), fs::is_symlink(fs::symlink_status(path, error)));
        }
    }

    void run() {
        read_waiting();
        while (!links_.empty()) {
            waiting_.insert(links_.extract(links_.begin()));
            read_waiting();
        }
    }

    Instruments result() {
        Instruments found;
        std::set<std::string> folders;
        for (auto& [real, name] : files_) {
            folders.insert(fs::path(name.second).parent_path().string());
            found.paths.push_back(std::move(name.second));
        }
        std::sort(found.paths.begin(), found.paths.end());
        found.folders = folders.size();
        found.unreadable.assign(unreadable_.begin(), unreadable_.end());
        return found;
    }

private:
    void read_waiting() {
        while (!waiting_.empty()) {
            const std::string folder = std::move(waiting_.extract(waiting_.begin()).value());
            read_folder(folder);
        }
    }

    void read_folder(const std::string& folder) {
        struct stat status {};
        if (stat(folder.c_str(), &status) != 0) {
            unreadable_.insert(folder);
            return;
        }
        if (!read_.emplace(status.st_dev, status.st_ino).second) {
            return;
        }
        const std::string real = real_path(folder);
        if (is_in_apple_library(folder) || is_in_apple_library(real)) {
            return;
        }
        std::error_code error;
        const std::size_t before = files_.size();
        fs::directory_iterator entries(folder, error);
        for (; !error && entries != fs::directory_iterator(); entries.increment(error)) {
            take_entry(folder, real, *entries);
        }
        if (error) {
            unreadable_.insert(folder);
        }
        folders_ += files_.size() > before ? 1 : 0;
        if (!progress_(files_.size(), folders_)) {
            waiting_.clear();
            links_.clear();
        }
    }

    void take_entry(const std::string& folder, const std::string& real,
                    const fs::directory_entry& entry) {
        const std::string name = entry.path().filename().string();
        if (name.starts_with('.')) {
            return;
        }
        const std::string path = joined(folder, name);
        std::error_code error; // of an entry that has been removed meanwhile
        const fs::file_status status = entry.symlink_status(error);
        if (fs::is_symlink(status)) {
            take_link(path, name);
        } else if (fs::is_directory(status)) {
            waiting_.insert(path);
        } else if (fs::is_regular_file(status) && is_instrument_name(name)) {
            add(path, joined(real, name), false);
        }
    }

    void take_link(const std::string& path, const std::string& name) {
        std::error_code error;
        const fs::file_status target = fs::status(path, error);
        if (fs::is_directory(target)) {
            links_.insert(path);
        } else if (is_instrument_name(name)) {
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
    std::set<std::string> waiting_; // folders to read
    std::set<std::string> links_;   // links to folders
    std::set<std::pair<dev_t, ino_t>> read_;
    /// By real path: whether the name is a link, and the name.
    std::map<std::string, std::pair<bool, std::string>> files_;
    std::set<std::string> unreadable_;
    std::size_t folders_ = 0; // in which instruments were found
};

} // namespace

bool is_instrument_name(const std::string& name) {
    const std::string extension = fs::path(name).extension().string();
    return strcasecmp(extension.c_str(), ".exs") == 0 ||
           strcasecmp(extension.c_str(), ".aupreset") == 0;
}

std::string fault_of_argument(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return std::strerror(errno);
    }
    const int rights = S_ISDIR(status.st_mode) ? R_OK | X_OK : R_OK;
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
