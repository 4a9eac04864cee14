// Numbers described by the recorded results of CoreFoundation.
#pragma once

#include "platform/core_foundation_vectors.h"

#include <map>
#include <string>

namespace lumo::test {

/// The number types by the short names that records use ("SInt64").
const std::map<std::string, CFNumberType>& number_types();

/// The number of a record of type "int" or "real".
Ref<CFNumberRef> make_number(const Json& source);

} // namespace lumo::test
