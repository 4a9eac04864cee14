// liblumo-relink: finds samples that moved. A SampleIndex holds the sample files under a set of
// root folders. While a relink session is open, the C library's file functions use an indexed file
// wherever a sample is not at its recorded path, and the session records each redirection.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#define LUMO_RELINK_EXPORT __attribute__((visibility("default")))

namespace lumo::exs {

/// The sample files under the root folders. A plain value: the caller constructs, moves and
/// destroys it, so the layout of its members is part of the library's ABI.
struct SampleIndex {
    /// One indexed file.
    struct Entry {
        std::string path; ///< path of the file, beginning with `root`
        std::string root; ///< root folder of the file, as passed to add_root
    };

    /// The indexed files by the key of their file name (Unicode NFC, case folded).
    std::unordered_map<std::string, std::vector<Entry>> files;
    /// Total number of entries in `files`.
    std::uint64_t entries = 0;

    /// Adds the sample files under `root` (empty: the current folder), except those of Apple's
    /// sound library. A root that was added before is not added again, even if its contents have
    /// changed. Whatever cannot be read is skipped silently; the only failure is a failed
    /// allocation, thrown as an exception.
    LUMO_RELINK_EXPORT void add_root(const std::string& root);

    /// The path of the indexed file to use in place of `recorded`, or nothing when no indexed file
    /// has its name. Accesses no disk; the result does not depend on the order of the walk.
    LUMO_RELINK_EXPORT std::optional<std::string> find(std::string_view recorded) const;
};

namespace relink {

/// What one session recorded. Each recorded path is in at most one list, and there once, byte for
/// byte as it was requested, in the order of the first requests.
struct Result {
    /// Redirected samples: the recorded path, and the indexed file used instead.
    std::vector<std::pair<std::string, std::string>> relinked;
    /// Recorded paths of samples that are neither in the index nor visible to the process at their
    /// recorded path: a folder without search permission hides its files.
    std::vector<std::string> unresolved;
    /// Paths of samples in Apple's sound library, whether they exist or not, and of existing
    /// samples that symbolic links lead into it.
    std::vector<std::string> apple_library;
};

/// Opens the session of this process with `index`, which must outlive it. Sessions do not nest;
/// each begin needs one end. While a session is open, the C library's functions that take a path
/// lock a mutex and allocate memory, in every thread: a signal handler, or a child forked from a
/// process with several threads, must not call them.
LUMO_RELINK_EXPORT void begin(const SampleIndex& index);

/// Closes the session and returns its records; the library keeps no copy. Empty when no session is
/// open.
LUMO_RELINK_EXPORT Result end();

} // namespace relink
} // namespace lumo::exs
