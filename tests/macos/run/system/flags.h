// Translation of a Mac program's flags and folder descriptors to those of this system.
#pragma once

#include <span>

namespace lumo::macos {

constexpr int mac_at_fdcwd = -2; ///< the current folder, where a descriptor is expected

/// A flag, or a combination of flags, of both systems.
struct FlagPair {
    int mac, here;
};

/// The flags of this system for the Mac's. Ends the process with a message that contains `what`
/// when a flag is not in the table.
int translate(int flags, std::span<const FlagPair> table, const char* what);

/// The flags of open for the Mac's; the Mac's for the result of F_GETFL (negative ones are returned
/// unchanged); and the flags of F_SETFL.
int open_flags(int mac);
int mac_status_flags(int here);
int status_flags(int mac);

/// The Mac's flags for those that the platform library opens with.
int mac_open_flags(int here);

/// The AT_ flags.
int at_flags(int mac);

/// The descriptor of a folder for the Mac's: the two systems have different numbers for the current
/// folder.
int folder_of(int mac);

} // namespace lumo::macos
