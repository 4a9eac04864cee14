// The tool runs as a program; each line of its standard output is parsed.
#include "support/import_run.h"

#include <gtest/gtest.h>

#include <sstream>

namespace lumo::test {

ImportRun run_import(const std::vector<std::string>& arguments,
                     const std::filesystem::path& folder) {
    std::vector<std::string> command = {LUMO_TOOL};
    command.insert(command.end(), arguments.begin(), arguments.end());
    ImportRun run = {run_process(command, folder), {}};
    std::istringstream lines(run.process.out);
    for (std::string line; std::getline(lines, line);) {
        run.lines.push_back(nlohmann::json::parse(line, nullptr, false));
        EXPECT_FALSE(run.lines.back().is_discarded()) << line;
    }
    return run;
}

nlohmann::json import_one(const std::filesystem::path& package, const std::filesystem::path& states,
                          const std::filesystem::path& instrument,
                          const std::vector<std::string>& options) {
    std::vector<std::string> arguments = {"--package", package.string(), "--states",
                                          states.string()};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.push_back(instrument.string());
    const ImportRun run = run_import(arguments);
    EXPECT_EQ(run.process.status, 0) << run.process.err;
    EXPECT_EQ(run.lines.size(), 1U) << run.process.out;
    return run.lines.size() == 1 ? run.lines.front() : nlohmann::json();
}

} // namespace lumo::test
