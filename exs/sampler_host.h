// Hosting AUSampler: making a unit, loading an instrument or a state into it, reading its state.
// No audio is processed; all properties are the unit's own (global scope, element 0).
#pragma once

#include "ref.h"

#include <AudioToolbox/AudioToolbox.h>

#include <memory>
#include <string>
#include <type_traits>

namespace lumo::exs {

/// Disposes of a unit.
struct DisposeUnit {
    void operator()(AudioUnit unit) const { AudioComponentInstanceDispose(unit); }
};

/// An AUSampler unit that disposes of itself, or none.
using Sampler = std::unique_ptr<std::remove_pointer_t<AudioUnit>, DisposeUnit>;

/// A new, initialised AUSampler; none, with `error` replaced by the reason, when there is none to
/// be had.
Sampler make_sampler(std::string& error);

/// Whether the last extension of `path` is `extension` (dot included), without regard to case.
bool has_extension(const std::string& path, const char* extension);

/// Loads the EXS instrument at `url`. Returns 0 or a status.
OSStatus set_exs(AudioUnit sampler, CFURLRef url);

/// Loads a state (or a preset, which is one). Returns 0 or a status.
OSStatus set_state(AudioUnit sampler, CFPropertyListRef state);

/// The unit's state, a dictionary; nothing when it cannot be read.
Ref<CFPropertyListRef> get_state(AudioUnit sampler);

} // namespace lumo::exs
