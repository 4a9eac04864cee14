// The tool's output: one line of JSON for each instrument.
#pragma once

#include <lumo/exs.h>

#include <string>

namespace lumo::exs {

/// A report as one JSON object, without spaces and without a newline. All keys are always there,
/// in a fixed order.
std::string report_line(const Report& report);

/// Writes a report's line to standard output and flushes it; whether that works is not looked at.
void print(const Report& report);

} // namespace lumo::exs
