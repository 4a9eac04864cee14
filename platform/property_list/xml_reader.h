// Property lists in XML.
#pragma once

#include "core_foundation/object.h"

#include <string_view>

namespace lumo::platform {

/// The value that an XML property list holds, or null when CoreFoundation would not take it.
/// `bytes` may be in any of the encodings of xml_text. Nothing behind the root element is looked
/// at.
Owned read_xml(std::string_view bytes);

} // namespace lumo::platform
