// The file references of a sampler state: which sample file stands behind which of the sampler's
// keys. Everything else in a state is left as it is.
#pragma once

#include "ref.h"

#include <map>
#include <string>

namespace lumo::exs {

/// Key to path, both UTF-8, in ascending order of the keys.
using References = std::map<std::string, std::string>;

/// The references of `state` (a CFDictionaryRef, borrowed) whose values are texts; empty when it
/// has none.
References references(const void* state);

/// A copy of `state` (a CFDictionaryRef, borrowed) that has exactly the given references. A
/// reference that is not UTF-8 cannot stand in a state and is left out.
Ref<CFTypeRef> with_references(const void* state, const References& paths);

} // namespace lumo::exs
