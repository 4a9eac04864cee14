// Texts of property lists: as bytes and as paths.
#pragma once

#include "ref.h"

#include <CoreFoundation/CoreFoundation.h>

#include <string>

namespace lumo::platform {

/// The string in UTF-8; empty when it holds what UTF-8 does not have (half a surrogate pair).
std::string to_utf8(CFStringRef string);

/// The path of a file reference: that of a file URL, unescaped and without its host, when the
/// reference is one, else the reference itself.
Ref<CFStringRef> posix_path(CFStringRef reference);

} // namespace lumo::platform
