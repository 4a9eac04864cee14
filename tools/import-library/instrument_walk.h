// Finds the instruments on the command line and in its folders.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace lumo::library {

/// The result of a walk.
struct Instruments {
    /// Paths that begin as on the command line, in ascending byte order, each file once.
    std::vector<std::string> paths;
    std::size_t folders = 0; ///< number of folders that contain an instrument
    /// The paths that were skipped: subfolders that could not be read, and dangling links to
    /// instruments. In ascending byte order.
    std::vector<std::string> unreadable;
};

/// Called after each folder with the numbers of instruments found and of folders that contain them.
/// Returning false ends the walk.
using WalkProgress = std::function<bool(std::size_t instruments, std::size_t folders)>;

/// Why the argument (a folder or an instrument) cannot be used; empty when it can.
std::string fault_of_argument(const std::string& path);

/// The instruments among `arguments` and in those that are folders. In folders, names that begin
/// with a dot and Apple's sound library are skipped. Links are followed; each folder is read once.
/// Of several paths of a file, one that is not a link is used, otherwise the smallest. The result
/// does not depend on the order of the arguments.
Instruments find_instruments(const std::vector<std::string>& arguments,
                             const WalkProgress& progress);

} // namespace lumo::library
