// Parses the command line.
#pragma once

#include <lumo/exs.h>

#include <optional>
#include <string>
#include <vector>

namespace lumo::exs {

/// The usage text, printed for every invalid command line.
extern const char* const usage;

/// The parsed arguments of the tool.
struct CommandLine {
    Options options;                      ///< everything except the index
    std::vector<std::string> search;      ///< folders to search for samples, in order
    std::vector<std::string> instruments; ///< in order, not empty
};

/// Parses the arguments of main; nothing when they are not valid.
std::optional<CommandLine> parse_command_line(int argc, const char* const* argv);

/// The folders to index, without duplicates, in ascending byte order: the folders of the
/// instruments and the search folders.
std::vector<std::string> root_folders(const CommandLine& line);

} // namespace lumo::exs
