// Dictionary look-up that checks the type of the value.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

namespace lumo::platform {

/// The value of `key`, borrowed; null when there is none or it is not of `type`.
CFTypeRef value_of_type(CFDictionaryRef dictionary, const char* key, CFTypeID type);

} // namespace lumo::platform
