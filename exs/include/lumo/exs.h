// Imports sampler instruments into a show: options, report and entry points.
#pragma once

#include <lumo/relink.h>
#include <lumo/state.h>

#include <cstdint>
#include <string>

namespace lumo::exs {

/// The options of all imports of one run.
struct Options {
    const SampleIndex* index = nullptr; ///< the files that replace moved samples; may be null
    std::string package;                ///< path of the show package (SHOW.lumo)
    std::string states;                 ///< folder that receives the sampler states
};

/// The outcome of the import of one instrument.
struct Report {
    std::string name;               ///< the instrument's file name without its extension
    std::string source;             ///< the instrument's path as given
    bool ok = false;                ///< the state was written and loads from the show
    std::string error;              ///< the reason of the failure; empty when ok
    relink::Result relink;          ///< what the relink session recorded
    std::uint64_t samples = 0;      ///< number of distinct sample files
    std::uint64_t sample_bytes = 0; ///< total size of these files
    std::uint64_t copied_bytes = 0; ///< number of bytes that this import copied
    Shape shape;
    std::string state_file; ///< path of the state file
    double load_ms = 0.0;   ///< time the sampler took to load the instrument
};

/// Imports the instrument at `path` into the show. Failures are returned in the report (`ok` false
/// and `error`), not thrown; the exceptions are a failed allocation and a state name whose
/// existence cannot be checked.
Report import_instrument(const std::string& path, const Options& options);

/// A copy of `state` (a CFDictionaryRef, borrowed) in which each file reference, a path relative to
/// the folder `package`, is joined with `package`; the caller releases it with CFRelease. Null,
/// with `error` set to the reason, when a reference is empty or absolute, or its file is missing.
const void* resolve_package_state(const void* state, const std::string& package,
                                  std::string& error);

} // namespace lumo::exs
