// In which order the objects of a property list are written.
#pragma once

#include "property_list/object_graph.h"

namespace lumo::platform {

/// Puts the nodes in the order of the file, which follows from the values alone: depth first from
/// the root, a dictionary's keys before its values, its entries in the order of their keys. False
/// when a container holds itself.
bool arrange_objects(ObjectGraph& graph);

} // namespace lumo::platform
