// The walk reads the root's own folders first and collects symbolic links to folders. Then it
// repeatedly removes the collected link that is smallest in byte order and reads the folders behind
// it, which may add links. A folder is identified by device and inode and is read once. Therefore
// cycles end, and each folder's path does not depend on the order in which the disk lists its
// entries.
//
// No descriptor stays open while another folder is read, so deep trees need no more descriptors.
// The status of files is not read: on common file systems a folder's entries contain their types.
//
// Files and folders of Apple's library are skipped, by their path as walked and by their real path.
// There are no links below the top folder of a tree, so the tree needs only one call of realpath.
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

/// Opens the folder at `path`; none on failure. The system refuses paths of PATH_MAX bytes or more:
/// a longer path is opened in pieces, each relative to the previous one.
Descriptor open_folder(const std::string& path) {
    Descriptor folder; // the rest of the path is relative to it; none: the current folder
    const auto open_next = [&](const char* piece) {
        const int start = folder ? folder.get() : AT_FDCWD;
        return Descriptor(uninterrupted([&] { return openat(start, piece, open_flags); }));
    };
    std::string_view rest = path;
    while (rest.size() >= PATH_MAX) {
        // Without a slash there, the piece is all of the rest, and the system refuses it.
        const std::size_t slash = rest.rfind('/', PATH_MAX - 2);
        folder = open_next(std::string(rest.substr(0, slash)).c_str());
        if (!folder) {
            return {};
        }
        rest.remove_prefix(std::min(rest.find_first_not_of('/', slash), rest.size()));
    }
    return open_next(rest.empty() ? "." : rest.data());
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
    /// Reads the folder `top` (a path that ends in a slash, or empty) and its subfolders.
    void read_tree(const std::string& top) {
        read_folder(open_tree(top), top);
        while (!folders_.empty() && !is_ended_) {
            const std::string path = std::move(folders_.back());
            folders_.pop_back();
            read_folder(open_folder(path), path);
        }
    }

    /// Opens the folder `top` as the top of the current tree; none on failure, or if it is in
    /// Apple's library.
    Descriptor open_tree(const std::string& top) {
        Descriptor folder = is_in_apple_library(top) ? Descriptor() : open_folder(top);
        real_top_ = folder ? real_path_of(folder, top) + '/' : "";
        top_size_ = top.size();
        return is_in_apple_library(real_top_) ? Descriptor() : std::move(folder);
    }

    /// Reads the folder at `path`, unless it is not open or was read before under another path.
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
        // Of several paths of a folder that is mounted twice, the first in byte order is used.
        std::sort(folders_.begin() + first, folders_.end(), std::greater<>());
        is_ended_ = names_.count() > 0 && !found_(path, names_);
    }

    bool is_unread(const Descriptor& folder) {
        struct stat status {};
        return folder && fstat(folder.get(), &status) == 0 &&
               read_.insert({status.st_dev, status.st_ino}).second;
    }

    /// Whether the entry `name` of the folder `path` belongs to Apple's library. The folder itself
    /// does not.
    bool is_apples(const std::string& path, std::string_view name) const {
        return may_enter_apple_library(name) && is_walked_apples(path + std::string(name));
    }

    bool is_walked_apples(const std::string& walked) const {
        return is_in_apple_library(walked) ||
               is_in_apple_library(real_top_ + walked.substr(top_size_));
    }

    void take(const std::string& path, int folder, const char* name, unsigned char type) {
        switch (type) { // pipes, sockets and devices are left out
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
        const mode_t target = mode_of(folder, name, 0); // 0: a dangling link, or a cycle of links
        if (S_ISREG(target)) {
            take_link_to_file(path, name);
        } else if (S_ISDIR(target)) {
            links_.push(path + name);
        }
    }

    void take_link_to_file(const std::string& path, std::string_view name) {
        if (is_sample_name(name) && !is_in_apple_library(real_path(path + std::string(name)))) {
            take_file(path, name);
        }
    }

    /// Takes an entry of a file system that does not store the types of entries.
    void take_unknown(const std::string& path, int folder, const char* name) {
        const mode_t mode = mode_of(folder, name, AT_SYMLINK_NOFOLLOW);
        if (S_ISREG(mode)) {
            take_file(path, name);
        } else if (S_ISDIR(mode)) {
            take_folder(path, name);
        } else if (S_ISLNK(mode)) {
            take_link(path, folder, name);
        }
    }

    /// The type and permissions of an entry; 0 when they cannot be read.
    static mode_t mode_of(int folder, const char* name, int flags) {
        struct stat status {};
        return fstatat(folder, name, &status, flags) == 0 ? status.st_mode : 0;
    }

    const SamplesFound& found_;
    bool is_ended_ = false;            // found_ has returned false
    std::string real_top_;             // the real path of the current tree, with a slash at the end
    std::size_t top_size_ = 0;         // length of the tree's path as walked
    NameList names_;                   // of the current folder
    std::vector<std::string> folders_; // to read; with a slash at the end
    std::priority_queue<std::string, std::vector<std::string>, std::greater<>> links_; // no slash
    std::unordered_set<FolderId, FolderIdHash> read_;
};

} // namespace

void walk_samples(const std::string& root, const SamplesFound& found) {
    Walk(found).run(root);
}

} // namespace lumo::exs::relink
