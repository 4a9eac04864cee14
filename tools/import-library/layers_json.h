// The layers of an instrument in the data of the page.
#pragma once

#include "json_writer.h"
#include "report.h"

namespace lumo::library {

/// Writes the list of the layers that the report names. Their key areas are read from the state; if
/// it cannot be read, they are null.
void write_layers(JsonWriter& json, const Report& report);

} // namespace lumo::library
