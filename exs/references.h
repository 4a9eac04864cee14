// The file references of a sampler state: the sample file of each of the sampler's keys. Everything
// else in a state is preserved.
#pragma once

#include "base/ref.h"

#include <map>
#include <string>

namespace lumo::exs {

/// Key to path, both UTF-8, in ascending order of the keys.
using References = std::map<std::string, std::string>;

/// The references of `state` (a CFDictionaryRef, borrowed) whose values are strings; empty when it
/// has none.
References references(const void* state);

/// A copy of `state` (a CFDictionaryRef, borrowed) with exactly the given references. A reference
/// whose key or path is not UTF-8 cannot be stored in a state and is omitted.
Ref<CFTypeRef> with_references(const void* state, const References& paths);

} // namespace lumo::exs
