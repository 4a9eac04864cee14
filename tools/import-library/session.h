// What the program does: importing a library, or summing up the lines of earlier runs.
#pragma once

#include "command_line.h"

namespace lumo::library {

/// Finds the instruments, runs the tool over them, shows how far it is and sums up. The program's
/// exit status.
int import_library(const CommandLine& line);

/// Sums up the report lines of files. The program's exit status.
int sum_up(const CommandLine& line);

} // namespace lumo::library
