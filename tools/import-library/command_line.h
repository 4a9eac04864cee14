// What the command line asks for.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace lumo::library {

/// Which of several parts a run takes.
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

/// What main does instead of running, and the text that goes with it.
struct Answer {
    int status = 0; ///< 0: the text is for standard output; 1: a fault, for standard error
    std::string text;
};

/// Takes the arguments of main apart. Folders lose slashes at their end, and arguments that begin
/// with "-" (behind "--") begin with "./" instead.
std::variant<CommandLine, Answer> parse_command_line(int argc, const char* const* argv);

} // namespace lumo::library
