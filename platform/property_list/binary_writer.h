// Property lists to their binary form.
#pragma once

#include "core_foundation/object.h"

namespace lumo::platform {

/// The binary property list, version 1.0, of `root` as an object of Kind::data; null when something
/// in it cannot stand in a property list or a container holds itself. Strings, numbers, dates, data
/// and UIDs that are equal and of the same kind are written once, and a container that is shared
/// once too. The bytes depend on the values alone. Any depth is written.
Owned write_binary(const Object* root);

} // namespace lumo::platform
