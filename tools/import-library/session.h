// The two functions of the program: importing a library, and summarising the lines of earlier runs.
#pragma once

#include "command_line.h"

namespace lumo::library {

/// Finds the instruments, starts the tool to import them, shows the progress and prints the
/// summary. Returns the program's exit status.
int import_library(const CommandLine& line);

/// Prints the summary of the report lines in files. Returns the program's exit status.
int sum_up(const CommandLine& line);

} // namespace lumo::library
