// Reads the values of a report line.
#pragma once

#include "report.h"

#include <string_view>

namespace lumo::library {

/// Reads a line that was converted by as_utf8; the texts are stored as bytes. False when it is not
/// a complete report line; `report` is then incomplete.
bool read_report(std::string_view utf8, Report& report);

} // namespace lumo::library
