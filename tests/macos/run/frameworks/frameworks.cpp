// The names of the frameworks' functions and variables. The project's platform library implements
// them.
#include "frameworks/mutable_string.h"
#include "system/system.h"

#include <AudioToolbox/AudioToolbox.h>
#include <CoreFoundation/CoreFoundation.h>

namespace lumo::macos {
namespace {

/// A function or variable of the platform library as a Mac program has it.
template <auto* name>
struct Entry {
    static void* address() { return const_cast<void*>(static_cast<const void*>(name)); }
};

template <class Result, class... Arguments, Result (*name)(Arguments...)>
struct Entry<name> {
    static int widened(Arguments... arguments) { return name(arguments...); }
    static void* address() {
        if constexpr (is_narrow<Result>) {
            return reinterpret_cast<void*>(widened);
        } else {
            return reinterpret_cast<void*>(name);
        }
    }
};

const Name names[] = {
#define NAME(name) {"_" #name, Entry<&(name)>::address()},
#include "framework_names.inc"
#undef NAME
};

} // namespace

std::span<const Name> framework_names() {
    return names;
}

} // namespace lumo::macos
