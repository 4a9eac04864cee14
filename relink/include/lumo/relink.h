// liblumo-relink: finds samples that moved. A SampleIndex holds the sample files under a set of
// root folders; while a relink session is open, the C library's file functions give an indexed
// file wherever a sample is not at its recorded path, and the session records what they did.
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

/// The sample files under the root folders. A plain value: its members are visible because the
/// caller constructs, moves and destroys it, so their layout is part of the library's interface.
struct SampleIndex {
    /// One indexed file.
    struct Entry {
        std::string path; ///< the file's path, beginning with `root`
        std::string root; ///< the root folder that it was found under, as given to add_root
    };

    /// The indexed files under the key of their file name (Unicode NFC, case folded).
    std::unordered_map<std::string, std::vector<Entry>> files;
    /// How many entries `files` holds in all.
    std::uint64_t entries = 0;

    /// Adds the sample files under `root`, which may be empty for the current folder, but for those
    /// of Apple's sound library. A root that was added before is not added again, whatever has
    /// changed below it. What cannot be read is passed over in silence; only allocation can fail,
    /// by exception.
    LUMO_RELINK_EXPORT void add_root(const std::string& root);

    /// The path of the indexed file to use in place of `recorded`, or nothing when no indexed
    /// file has its name. Touches no disk; the answer does not depend on the order of the walk.
    LUMO_RELINK_EXPORT std::optional<std::string> find(std::string_view recorded) const;
};

namespace relink {

/// What one session found. Each recorded path stands in one list at most and there once, byte
/// for byte as it was asked for, in the order in which it was first asked for.
struct Result {
    /// Samples that were redirected: the recorded path, the indexed file used instead.
    std::vector<std::pair<std::string, std::string>> relinked;
    /// Recorded paths of samples that are not in the index, and neither at their place as far as
    /// the process can see: a folder that may not be searched hides them.
    std::vector<std::string> unresolved;
    /// Paths of samples that belong to Apple's sound library, whether they exist or not, and of
    /// existing ones that links lead into it.
    std::vector<std::string> apple_library;
};

/// Opens the session of this process against `index`, which must outlive it. Sessions do not
/// nest; each begin is followed by one end. While a session is open, the C library's functions that
/// take a path lock and allocate, in every thread: a signal handler, or a child that was forked
/// from a process with several threads, must not call them.
LUMO_RELINK_EXPORT void begin(const SampleIndex& index);

/// Closes the session and hands over what it recorded; the library keeps nothing of it. Empty when
/// no session is open.
LUMO_RELINK_EXPORT Result end();

} // namespace relink
} // namespace lumo::exs
