// The tool's output: one line of JSON per instrument.
#pragma once

#include <lumo/exs.h>

#include <string>

namespace lumo::exs {

/// A report as one JSON object, without spaces or a newline. All keys are always present, in a
/// fixed order.
std::string report_line(const Report& report);

/// Writes the line of a report to standard output and flushes it. Write errors are ignored.
void print(const Report& report);

} // namespace lumo::exs
