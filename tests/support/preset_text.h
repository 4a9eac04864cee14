// AUSampler presets for tests, in XML as the sampler's hosts save them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lumo::test {

/// A preset with one layer, in which each of the samples has a zone of one key, from 36 upwards.
/// The paths are UTF-8.
std::string preset_text(const std::vector<std::string>& sample_paths);

/// A preset with the given layers (XML of dictionaries) and samples.
std::string preset_text(const std::vector<std::string>& sample_paths, std::string_view layers);

} // namespace lumo::test
