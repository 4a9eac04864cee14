// What copyfile carries from one open file to another.
#pragma once

#include <copyfile.h>
#include <sys/stat.h>

namespace lumo::platform {

/// Fills the empty file `to` with the data of `from`, which has the status `status`: as a clone
/// when `clone` is asked for and the volume can, else by copying; holes stay holes. False, with
/// errno set, when not all of it could be read or written.
bool copy_data(int from, int to, const struct stat& status, bool clone);

/// Gives `to` what `flags` name of the metadata of `from`, which has the status `status`:
/// COPYFILE_XATTR the "user." attributes, COPYFILE_ACL the access control list, COPYFILE_STAT mode
/// (without the set-id bits), times and owner. What the file system of `to` does not have, and what
/// this process may not give, is left out. False, with errno set, on any other failure.
bool copy_metadata(int from, int to, const struct stat& status, copyfile_flags_t flags);

} // namespace lumo::platform
