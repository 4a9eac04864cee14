// Converts strings of property lists to paths.
#pragma once

#include "base/ref.h"

namespace lumo::platform {

/// The path of a file reference. For a file URL, its path, percent-decoded and without the host;
/// else, or when the URL has no valid path, the reference itself.
Ref<CFStringRef> posix_path(CFStringRef reference);

} // namespace lumo::platform
