// Everything that a reader or writer of property lists needs: how objects are made, with their
// references handed over, and how their values are looked at without a call.
//
// A reader keeps the values it has finished on one std::vector<Owned>; when a container ends,
// make_array, make_dictionary or make_set takes over the values from its start on. One that knows
// an array's size beforehand fills it at once (make_array_with_room).
#pragma once

#include "core_foundation/array.h"
#include "core_foundation/dictionary.h"
#include "core_foundation/error.h"
#include "core_foundation/number.h"
#include "core_foundation/object.h"
#include "core_foundation/string.h"
#include "core_foundation/values.h"
