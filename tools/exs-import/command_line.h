// What the command line asks for.
#pragma once

#include <lumo/exs.h>

#include <optional>
#include <string>
#include <vector>

namespace lumo::exs {

/// The usage text, which answers every fault of the command line.
extern const char* const usage;

/// The arguments of the tool, taken apart.
struct CommandLine {
    Options options;                      ///< all but the index
    std::vector<std::string> search;      ///< folders to look for samples in, in order
    std::vector<std::string> instruments; ///< in order, not empty
};

/// Takes the arguments of main apart; nothing when they don't make an import.
std::optional<CommandLine> parse_command_line(int argc, const char* const* argv);

/// The folders to index, each once, in ascending byte order: those of the instruments and the
/// search folders.
std::vector<std::string> root_folders(const CommandLine& line);

} // namespace lumo::exs
