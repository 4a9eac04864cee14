// AUSampler presets in XML, for tests and benchmarks, as the sampler's hosts save them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lumo::test {

/// The entries that identify a state as the sampler's own.
inline constexpr std::string_view sampler_numbers =
    "<key>manufacturer</key><integer>1634758764</integer>"
    "<key>subtype</key><integer>1935764848</integer>"
    "<key>type</key><integer>1635085685</integer>"
    "<key>version</key><integer>0</integer>";

/// A preset with one layer, in which each of the samples has a zone of one key, from 36 upwards.
/// The paths are UTF-8.
std::string preset_text(const std::vector<std::string>& sample_paths);

/// A preset with the given layers (XML of dictionaries) and samples.
std::string preset_text(const std::vector<std::string>& sample_paths, std::string_view layers);

/// A large state as a Mac writes it: two layers of `zones` zones of 8 keys each, and a sample for
/// every zone of a layer. Without `sampler_numbers`.
std::string large_state_text(int zones);

} // namespace lumo::test
