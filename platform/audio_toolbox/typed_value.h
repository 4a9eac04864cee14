// Entries of a dictionary that count only if they are of the right type.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

namespace lumo::platform {

/// The value of `key` if it is of `type`; else null. Borrowed.
CFTypeRef value_of_type(CFDictionaryRef dictionary, const char* key, CFTypeID type);

} // namespace lumo::platform
