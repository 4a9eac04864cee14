// From C++ to the statuses of the C interface.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <new>

namespace lumo::platform {

/// General statuses, of MacErrors.h.
constexpr OSStatus parameter_error = -50;
constexpr OSStatus memory_full = -108;
constexpr OSStatus unspecified_error = -1;

/// The status that `work` returns, or that of the exception it ends with.
template <class Work>
OSStatus guarded(Work work) noexcept {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        return memory_full;
    } catch (...) {
        return unspecified_error;
    }
}

} // namespace lumo::platform
