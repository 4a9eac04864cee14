// Parses the command line of lumo-import-library.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace lumo::library {

/// The part of the instruments that a run imports.
struct Shard {
    std::uint32_t number = 1; ///< from 1
    std::uint32_t of = 1;
};

/// The options and arguments of the program.
struct CommandLine {
    std::string package;
    std::string states;
    std::vector<std::string> search;
    std::string page;          ///< empty: none
    std::string lines;         ///< empty: none
    std::string continue_file; ///< empty: none
    Shard shard;
    bool is_dry_run = false;
    std::vector<std::string> from;      ///< files of report lines; not empty: nothing is imported
    std::vector<std::string> arguments; ///< folders and instruments
};

/// A text to print instead of running, and the exit status.
struct Answer {
    int status = 0; ///< 0: the text is for standard output; 1: a fault, for standard error
    std::string text;
};

/// Parses the arguments of main. Slashes at the end of folders are removed; "./" is added before
/// arguments that begin with "-" (after "--").
std::variant<CommandLine, Answer> parse_command_line(int argc, const char* const* argv);

} // namespace lumo::library
