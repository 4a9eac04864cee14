// Runs the tool over many instruments, in as many calls as it takes.
#pragma once

#include "summary.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace lumo::library {

/// The tool's command line but for the instruments: the same for every call, so that each looks for
/// samples below the same folders whichever instruments it has. These are `search`, each of
/// `arguments` that is a folder, and the folders of the others.
std::vector<std::string> tool_command(const std::string& tool, const std::string& package,
                                      const std::string& states,
                                      const std::vector<std::string>& search,
                                      const std::vector<std::string>& arguments);

/// How many of `instruments`, from `first`, go on a command line that has `room` bytes left; at
/// least one.
std::size_t fitting(const std::vector<std::string>& instruments, std::size_t first,
                    std::size_t room);

/// Takes what a run gives, as it comes.
struct RunListener {
    /// A report line, without its end, of the instrument of this number.
    std::function<void(std::string_view line, std::size_t instrument)> line;
    /// The tool ended at this instrument; `reason` says how.
    std::function<void(std::size_t instrument, const std::string& reason)> ended_at;
    /// A line of the tool's standard error, or a failure to start it.
    std::function<void(std::string_view text)> message;
    /// Some time has passed, a tenth of a second at most; false ends the run.
    std::function<bool()> may_go_on;
};

/// Runs `command` with `instruments`, in order. When the tool ends early, another one goes on
/// behind the instrument that it was at. The run fails when it cannot be started, or ends three
/// times in a row without a line.
RunEnd run_tool(const std::vector<std::string>& command,
                const std::vector<std::string>& instruments, const RunListener& listener);

} // namespace lumo::library
