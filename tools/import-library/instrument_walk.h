// Finds the instruments that the command line names and those below its folders.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace lumo::library {

/// What a walk found.
struct Instruments {
    /// Paths as they begin on the command line, in ascending byte order, each file once.
    std::vector<std::string> paths;
    std::size_t folders = 0; ///< that hold an instrument
    /// Folders below those of the command line that could not be read, and links to instruments
    /// that lead nowhere: what was left out. In byte order.
    std::vector<std::string> unreadable;
};

/// Is called after each folder: how many instruments have been found in how many folders. False
/// ends the walk.
using WalkProgress = std::function<bool(std::size_t instruments, std::size_t folders)>;

/// Whether a file name has the extension of an instrument, in any letter case.
bool is_instrument_name(const std::string& name);

/// Why the argument (a folder or an instrument) cannot be taken; empty when it can.
std::string fault_of_argument(const std::string& path);

/// The instruments among `arguments` and below those that are folders. Names that begin with a dot
/// and what belongs to Apple's sound library are left out below a folder; links are followed, each
/// folder is read once, and a file that has several names has the one that is no link, or else the
/// smallest. The order of the arguments does not matter.
Instruments find_instruments(const std::vector<std::string>& arguments,
                             const WalkProgress& progress);

} // namespace lumo::library
