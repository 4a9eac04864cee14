// The walk reads the root's own folders first and keeps the symbolic links to folders that it
// meets. Then it takes the byte-wise smallest of the links still waiting, reads the folders behind
// it, which may add links, and so on. A folder is known by device and inode and is read the first
// time only: so cycles end, and each folder has the path that these rules give it, whatever the
// order in which the disk lists its entries.
//
// No descriptor stays open while another folder is read, so depth costs none. Files are never
// asked for their status: the entries of a folder tell their types on every usual file system.
//
// What belongs to Apple's library is left out, by the path as walked and by the real one. Below the
// folder that a tree begins with there are no links, so one real path serves the whole tree.
#include "folder_walk.h"

#include "apple_library.h"
#include "base/descriptor.h"
#include "folder_entries.h"
#include "sample_names.h"

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <queue>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace lumo::exs::relink {
namespace {

struct FolderId {
    dev_t device;
    ino_t inode;
    bool operator==(const FolderId&) const = default;
};

struct FolderIdHash {
    std::size_t operator()(const FolderId& id) const {
        return std::hash<std::uint64_t>()(id.inode ^ static_cast<std::uint64_t>(id.device) << 40);
    }
};

constexpr int open_flags = O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC;

/// Opens the folder at `path`; none when that cannot be done. The system takes no path of PATH_MAX
/// bytes or more: a longer one is opened in pieces, each from the folder before it.
Descriptor open_folder(const std::string& path) {
    Descriptor folder; // the rest of the path begins in it; none is the current one
    const auto open_next = [&](const char* piece) {
        const int start = folder ? folder.get() : AT_FDCWD;
        return Descriptor(uninterrupted([&] { return openat(start, piece, open_flags); }));
    };
    std::size_t begin = 0;
    while (path.size() - begin >= PATH_MAX) {
        const std::size_t slash = path.rfind('/', begin + PATH_MAX - 2);
        if (slash == std::string::npos || slash <= begin) {
            return {};
        }
        folder = open_next(path.substr(begin, slash - begin).c_str());
        if (!folder) {
            return {};
        }
        begin = std::min(path.find_first_not_of('/', slash), path.size());
    }
    return open_next(begin < path.size() ? path.c_str() + begin : ".");
}

class Walk {
public:
    explicit Walk(const SamplesFound& found) : found_(found) {}

    void run(const std::string& root) {
        read_tree(root.empty() || root.back() == '/' ? root : root + '/');
        while (!links_.empty() && !is_ended_) {
            const std::string link = links_.top() + '/';
            links_.pop();
            read_tree(link);
        }
    }

private:
    /// Reads the folder `top`, a path with a slash at the end or empty, and those in it.
    void read_tree(const std::string& top) {
        Descriptor folder = is_in_apple_library(top) ? Descriptor() : open_folder(top);
        if (!folder) {
            return;
        }
        real_top_ = real_path_of(folder, top) + '/';
        top_size_ = top.size();
        if (is_in_apple_library(real_top_)) {
            return;
        }
        read_folder(std::move(folder), top);
        while (!folders_.empty() && !is_ended_) {
            const std::string path = std::move(folders_.back());
            folders_.pop_back();
            read_folder(open_folder(path), path);
        }
    }

    /// Reads the open folder at `path`, if it is one, and was not read before under another path.
    void read_folder(Descriptor folder, const std::string& path) {
        if (!is_unread(folder)) {
            return;
        }
        names_.clear();
        const auto first = static_cast<std::ptrdiff_t>(folders_.size());
        const int descriptor = folder.get();
        read_entries(std::move(folder), [&](const char* name, unsigned char type) {
            if (name[0] != '.') {
                take(path, descriptor, name, type);
            }
        });
        // A folder that is mounted twice is read under its first name.
        std::sort(folders_.begin() + first, folders_.end(), std::greater<>());
        is_ended_ = names_.count() > 0 && !found_(path, names_);
    }

    bool is_unread(const Descriptor& folder) {
        struct stat status {};
        return folder && fstat(folder.get(), &status) == 0 &&
               read_.insert({status.st_dev, status.st_ino}).second;
    }

    /// Whether what is called `name` in the folder `path`, which does not belong to Apple's
    /// library, does.
    bool is_apples(const std::string& path, std::string_view name) const {
        if (!may_enter_apple_library(name)) {
            return false;
        }
        const std::string walked = path + std::string(name);
        return is_in_apple_library(walked) ||
               is_in_apple_library(real_top_ + walked.substr(top_size_));
    }

    void take(const std::string& path, int folder, const char* name, unsigned char type) {
        switch (type) {
        case DT_REG:
            take_file(path, name);
            break;
        case DT_DIR:
            take_folder(path, name);
            break;
        case DT_LNK:
            take_link(path, folder, name);
            break;
        case DT_UNKNOWN:
            take_unknown(path, folder, name);
            break;
        default:
            break; // a pipe, a socket or a device
        }
    }

    void take_file(const std::string& path, std::string_view name) {
        if (is_sample_name(name) && !is_apples(path, name)) {
            names_.add(name);
        }
    }

    void take_folder(const std::string& path, std::string_view name) {
        if (is_apples(path, name)) {
            return;
        }
        std::string& folder = folders_.emplace_back();
        folder.reserve(path.size() + name.size() + 1);
        folder.append(path).append(name).push_back('/');
    }

    void take_link(const std::string& path, int folder, const char* name) {
        struct stat target {};
        if (fstatat(folder, name, &target, 0) != 0) {
            return; // it leads nowhere, or round in a circle
        }
        if (S_ISREG(target.st_mode)) {
            take_link_to_file(path, name);
        } else if (S_ISDIR(target.st_mode)) {
            links_.push(path + name);
        }
    }

    void take_link_to_file(const std::string& path, std::string_view name) {
        if (is_sample_name(name) && !is_in_apple_library(real_path(path + std::string(name)))) {
            take_file(path, name);
        }
    }

    /// An entry of a file system that does not tell the types of its entries.
    void take_unknown(const std::string& path, int folder, const char* name) {
        struct stat status {};
        if (fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
            return;
        }
        if (S_ISREG(status.st_mode)) {
            take_file(path, name);
        } else if (S_ISDIR(status.st_mode)) {
            take_folder(path, name);
        } else if (S_ISLNK(status.st_mode)) {
            take_link(path, folder, name);
        }
    }

    const SamplesFound& found_;
    bool is_ended_ = false;            // by what takes the samples
    std::string real_top_;             // the real path of the tree that is read, with a slash
    std::size_t top_size_ = 0;         // the length of its path as walked
    NameList names_;                   // of the folder that is read
    std::vector<std::string> folders_; // paths to read, with a slash at the end
    std::priority_queue<std::string, std::vector<std::string>, std::greater<>> links_; // without
    std::unordered_set<FolderId, FolderIdHash> read_;
};

} // namespace

void walk_samples(const std::string& root, const SamplesFound& found) {
    Walk(found).run(root);
}

} // namespace lumo::exs::relink
