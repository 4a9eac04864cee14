// Runs part of a test in a child process, so that changes to the process (limits, user, refused
// system calls, mounts) end with it.
#pragma once

#include <functional>
#include <vector>

namespace lumo::test {

/// Calls `work` in a child process and returns its result (0 to 255), or minus the number of the
/// signal that ended the process.
int in_child(const std::function<int()>& work);

/// A system call to refuse; with a mask, only when (argument & mask) == value.
struct RefusedCall {
    int number;       ///< SYS_...
    int error;        ///< the errno that it sets
    int argument = 0; ///< index of the argument that is masked, 0 to 5
    unsigned mask = 0;
    unsigned value = 0;
};

/// Refuses the calls until this process ends; false when the kernel does not support it. Only in
/// a child.
bool refuse(const std::vector<RefusedCall>& calls);

/// Changes this process from root to an unprivileged user; false when it is not root's. Only in a
/// child.
bool become_nobody();

/// Mounts an empty tmpfs of `bytes` on `folder`, visible to this process only; false when that is
/// not permitted. Only in a child.
bool mount_small_volume(const char* folder, int bytes);

} // namespace lumo::test
