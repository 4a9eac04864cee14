// Maps C++ exceptions to the statuses of the C interface.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <new>

namespace lumo::platform {

/// General statuses, from MacErrors.h.
constexpr OSStatus parameter_error = -50;
constexpr OSStatus memory_full = -108;
constexpr OSStatus unspecified_error = -1;

/// The status that `work` returns, or the status for the exception that it throws.
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
