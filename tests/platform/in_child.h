// Runs a piece of a test in a process of its own, so that what it does to the process (limits,
// users, refused system calls, mounts) ends with it.
#pragma once

#include <functional>
#include <vector>

namespace lumo::test {

/// What `work` returns (0 to 255) when it is called in a child process; minus the number of the
/// signal that ended it otherwise.
int in_child(const std::function<int()>& work);

/// A system call that fails. With a mask only when (argument & mask) == value.
struct RefusedCall {
    int number;       ///< SYS_...
    int error;        ///< the errno that it gives
    int argument = 0; ///< which of its arguments the mask is for, 0 to 5
    unsigned mask = 0;
    unsigned value = 0;
};

/// Refuses calls for the rest of this process; false when the kernel does not do that. Only in a
/// child.
bool refuse(const std::vector<RefusedCall>& calls);

/// Turns this process, of the superuser, into one of a user without any rights; false when it is
/// not the superuser's. Only in a child.
bool become_nobody();

/// Mounts an empty memory file system of `bytes` on `folder` for this process alone; false when
/// that is not permitted. Only in a child.
bool mount_small_volume(const char* folder, int bytes);

} // namespace lumo::test
