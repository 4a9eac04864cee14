// Reads XML property lists.
#pragma once

#include "core_foundation/object.h"

#include <string_view>

namespace lumo::platform {

/// The value of an XML property list, or null when CoreFoundation would reject it. `bytes` may have
/// any encoding of xml_text. Anything after the root element is ignored.
Owned read_xml(std::string_view bytes);

} // namespace lumo::platform
