// Flags and folder descriptors of a Mac program as those of this system.
#pragma once

#include <span>

namespace lumo::macos {

constexpr int mac_at_fdcwd = -2; ///< the current folder, where a descriptor is expected

/// A flag, or several that belong together, of both systems.
struct FlagPair {
    int mac, here;
};

/// The flags of this system for the Mac's. One that is not in the table ends the process, which
/// names it by `what`.
int translate(int flags, std::span<const FlagPair> table, const char* what);

/// The flags of open for the Mac's, the Mac's for what a descriptor's F_GETFL gives (a negative
/// number stays), and the flags of F_SETFL.
int open_flags(int mac);
int mac_status_flags(int here);
int status_flags(int mac);

/// The Mac's flags for those that the platform library opens with.
int mac_open_flags(int here);

/// The AT_ flags.
int at_flags(int mac);

/// The descriptor of a folder: each system's number for the current folder is no descriptor of the
/// other's.
int folder_of(int mac);

} // namespace lumo::macos
