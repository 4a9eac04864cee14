// Runs a program and returns its output.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace lumo::test {

/// The exit status and the output of a program.
struct ProcessResult {
    int status = -1; ///< exit status, or minus the number of the signal that ended it
    std::string out; ///< standard output
    std::string err; ///< standard error
};

/// Runs `arguments[0]` (a path, or a name on PATH) in `folder` (empty: the current one) with no
/// standard input, and waits for it. Throws std::runtime_error when it cannot be started.
ProcessResult run_process(const std::vector<std::string>& arguments,
                          const std::filesystem::path& folder = {});

} // namespace lumo::test
