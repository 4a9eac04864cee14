// Converts strings of property lists to UTF-8 and to paths.
#pragma once

#include "base/ref.h"

#include <CoreFoundation/CoreFoundation.h>

#include <string>

namespace lumo::platform {

/// The string in UTF-8; empty when it cannot be encoded (a lone surrogate).
std::string to_utf8(CFStringRef string);

/// The path of a file reference. For a file URL, its path, percent-decoded and without the host;
/// else, or when the URL has no valid path, the reference itself.
Ref<CFStringRef> posix_path(CFStringRef reference);

} // namespace lumo::platform
