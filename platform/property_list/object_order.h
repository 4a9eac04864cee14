// The order in which the objects of a property list are written.
#pragma once

#include "property_list/object_graph.h"

namespace lumo::platform {

/// Sorts the nodes into the order of the file, which depends on the values alone: depth first from
/// the root, the keys of a dictionary before its values, its entries sorted by key. False when a
/// container contains itself.
bool arrange_objects(ObjectGraph& graph);

} // namespace lumo::platform
