// Importing sampler instruments into a show: what the tool hands in and gets back.
#pragma once

#include <lumo/relink.h>
#include <lumo/state.h>

#include <cstdint>
#include <string>
#include <vector>

namespace lumo::exs {

/// What holds for all imports of one run.
struct Options {
    const SampleIndex* index = nullptr; ///< where to look for samples that moved; may be null
    std::string package;                ///< path of the show package (SHOW.lumo)
    std::string states;                 ///< folder that receives the sampler states
};

/// What became of one instrument.
struct Report {
    std::string name;               ///< the instrument's file name without its extension
    std::string source;             ///< the instrument's path as given
    bool ok = false;                ///< the state is in the show and loads from there
    std::string error;              ///< why not; empty when ok
    relink::Result relink;          ///< what the relink session found
    std::uint64_t samples = 0;      ///< distinct sample files
    std::uint64_t sample_bytes = 0; ///< their size in bytes
    std::uint64_t copied_bytes = 0; ///< bytes copied into the show by this import
    Shape shape;
    std::string state_file; ///< path of the written state
    double load_ms = 0.0;   ///< time the sampler took to load it, in milliseconds
};

/// Imports the instrument at `path` into the show. Failures are told by the report (`ok` false and
/// `error`), not thrown; the exceptions are allocation and a state name that cannot be tested.
Report import_instrument(const std::string& path, const Options& options);

/// A copy of `state` (a CFDictionaryRef, borrowed) whose file references, relative to the folder
/// `package`, are joined with it; the caller releases it with CFRelease. Null, with `error`
/// replaced by the reason, when a reference is empty or absolute, or its file is missing.
const void* resolve_package_state(const void* state, const std::string& package,
                                  std::string& error);

} // namespace lumo::exs
