// Runs of the built tool.
#pragma once

#include "support/run_process.h"

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace lumo::test {

/// The result of a run, with its report lines parsed. A line that is not JSON fails the test.
struct ImportRun {
    ProcessResult process;
    std::vector<nlohmann::json> lines;
};

/// Runs the tool with the arguments in `folder` (empty: the current one).
ImportRun run_import(const std::vector<std::string>& arguments,
                     const std::filesystem::path& folder = {});

/// Runs the tool for one instrument and returns its report; null unless there is exactly one line.
nlohmann::json import_one(const std::filesystem::path& package, const std::filesystem::path& states,
                          const std::filesystem::path& instrument,
                          const std::vector<std::string>& options = {});

} // namespace lumo::test
