// Writes binary property lists.
#pragma once

#include "core_foundation/object.h"

namespace lumo::platform {

/// The binary property list, version 1.0, of `root` as an object of Kind::data; null when it
/// contains an object that a property list cannot contain, or a container that contains itself.
/// Strings, numbers, dates, data and UIDs that are equal and of the same kind are written once, as
/// are shared containers. The bytes depend on the values alone. The depth is not limited.
Owned write_binary(const Object* root);

} // namespace lumo::platform
