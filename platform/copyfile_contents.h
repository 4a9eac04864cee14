// Copies data and metadata between two open files.
#pragma once

#include <copyfile.h>
#include <sys/stat.h>

namespace lumo::platform {

/// Copies the data of `from`, whose status is `status`, to the empty file `to`: as a clone when
/// `clone` is set and the volume supports it, else by copying; holes are preserved. False, with
/// errno set, when not all of it could be read or written.
bool copy_data(int from, int to, const struct stat& status, bool clone);

/// Copies the metadata of `from`, whose status is `status`, to `to`, as selected by `flags`:
/// COPYFILE_XATTR the "user." attributes, COPYFILE_ACL the access control list, COPYFILE_STAT mode
/// (without the set-id bits), times and owner. Metadata that the file system of `to` does not
/// support, or that this process is not permitted to set, is skipped. False, with errno set, on any
/// other failure.
bool copy_metadata(int from, int to, const struct stat& status, copyfile_flags_t flags);

} // namespace lumo::platform
