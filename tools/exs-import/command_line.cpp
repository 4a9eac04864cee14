// Parses the command line: three options with one value each; an argument that does not begin with
// "--" is an instrument.
#include "command_line.h"

#include <algorithm>
#include <filesystem>

namespace lumo::exs {
namespace {

/// Stores the value of an option. False when there is no such option.
bool take_option(const std::string& option, const char* value, CommandLine& line) {
    if (option == "--package") {
        line.options.package = value;
    } else if (option == "--states") {
        line.options.states = value;
    } else if (option == "--search") {
        line.search.emplace_back(value);
    } else {
        return false;
    }
    return true;
}

} // namespace

const char* const usage = "usage: lumo-exs-import --package SHOW.lumo --states FOLDER "
                          "[--search FOLDER]... INSTRUMENT...\n";

std::optional<CommandLine> parse_command_line(int argc, const char* const* argv) {
    CommandLine line;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (i + 1 < argc && take_option(argument, argv[i + 1], line)) {
            ++i;
        } else if (argument.starts_with("--")) {
            return std::nullopt;
        } else {
            line.instruments.push_back(argument);
        }
    }
    if (line.options.package.empty() || line.options.states.empty() || line.instruments.empty()) {
        return std::nullopt;
    }
    return line;
}

std::vector<std::string> root_folders(const CommandLine& line) {
    std::vector<std::string> roots;
    for (const std::string& instrument : line.instruments) {
        roots.push_back(std::filesystem::path(instrument).parent_path().string());
    }
    roots.insert(roots.end(), line.search.begin(), line.search.end());
    std::sort(roots.begin(), roots.end());
    roots.erase(std::unique(roots.begin(), roots.end()), roots.end());
    return roots;
}

} // namespace lumo::exs
