// Numbers as the recorded results of CoreFoundation tell them.
#pragma once

#include "platform/core_foundation_vectors.h"

#include <map>
#include <string>

namespace lumo::test {

/// The number types by their short names ("SInt64").
const std::map<std::string, CFNumberType>& number_types();

/// The number of a record of type "int" or "real".
Holder<CFNumberRef> make_number(const Json& source);

} // namespace lumo::test
