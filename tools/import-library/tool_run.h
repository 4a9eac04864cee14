// Imports many instruments by starting the tool as often as necessary.
#pragma once

#include "summary.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace lumo::library {

/// The tool's command line without instruments. It is the same for every call, so that each call
/// searches the same folders for samples: `search`, each of `arguments` that is a folder, and the
/// folders of the others.
std::vector<std::string> tool_command(const std::string& tool, const std::string& package,
                                      const std::string& states,
                                      const std::vector<std::string>& search,
                                      const std::vector<std::string>& arguments);

/// How many of `instruments`, from `first`, fit on a command line with `room` bytes left; at least
/// one.
std::size_t fitting(const std::vector<std::string>& instruments, std::size_t first,
                    std::size_t room);

/// Receives the events of a run.
struct RunListener {
    /// A report line, without its line end, of the instrument with this number.
    std::function<void(std::string_view line, std::size_t instrument)> line;
    /// The tool ended at this instrument; `reason` describes how.
    std::function<void(std::size_t instrument, const std::string& reason)> ended_at;
    /// A line of the tool's standard error, or a failure to start it.
    std::function<void(std::string_view text)> message;
    /// Called at least every 100 ms; returning false ends the run.
    std::function<bool()> may_go_on;
};

/// Runs `command` with `instruments`, in order. When the tool ends early, it is started again after
/// the current instrument. The run fails when the tool cannot be started, or ends three times in a
/// row without a line.
RunEnd run_tool(const std::vector<std::string>& command,
                const std::vector<std::string>& instruments, const RunListener& listener);

} // namespace lumo::library
