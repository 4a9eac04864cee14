// Everything that a reader or writer of property lists needs: functions that create objects and
// take ownership of their children, and direct access to values.
//
// A reader pushes finished values on one std::vector<Owned>; at the end of a container, make_array,
// make_dictionary or make_set takes its values from that vector. If the size of an array is known
// in advance, it can be filled directly (make_array_with_room).
#pragma once

#include "core_foundation/array.h"
#include "core_foundation/dictionary.h"
#include "core_foundation/number.h"
#include "core_foundation/object.h"
#include "core_foundation/string.h"
#include "core_foundation/values.h"
