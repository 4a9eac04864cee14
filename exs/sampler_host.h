// Hosts AUSampler: creates a unit, loads an instrument or a state into it, and reads its state. No
// audio is rendered; all properties belong to the unit as a whole (global scope, element 0).
#pragma once

#include "base/ref.h"

#include <AudioToolbox/AudioToolbox.h>

#include <memory>
#include <string>
#include <type_traits>

namespace lumo::exs {

/// Disposes of a unit.
struct DisposeUnit {
    void operator()(AudioUnit unit) const { AudioComponentInstanceDispose(unit); }
};

/// An AUSampler unit, disposed of by the destructor, or none.
using Sampler = std::unique_ptr<std::remove_pointer_t<AudioUnit>, DisposeUnit>;

/// A new, initialised AUSampler; none, with `error` set to the reason, when it cannot be created.
Sampler make_sampler(std::string& error);

/// Whether the last extension of `path` is `extension` (with its dot), ignoring case.
bool has_extension(const std::string& path, const char* extension);

/// Loads the EXS instrument at `url`. Returns 0 or an error status.
OSStatus set_exs(AudioUnit sampler, CFURLRef url);

/// Loads a state or a preset (the two have one format). Returns 0 or an error status.
OSStatus set_state(AudioUnit sampler, CFPropertyListRef state);

/// The unit's state, a dictionary; nothing when it cannot be read.
Ref<CFPropertyListRef> get_state(AudioUnit sampler);

} // namespace lumo::exs
