// Assigns the zones of an EXS24 instrument to layers of the sampler.
#pragma once

#include "sampler/exs_instrument.h"

#include <cstddef>
#include <vector>

namespace lumo::platform {

/// A zone that plays a sample.
struct ExsPlacedZone {
    const ExsZone* zone;
    const ExsSample* sample;
    std::size_t sample_number; ///< index in ExsInstrument::samples
    bool enabled;
};

/// A layer of the sampler.
struct ExsLayer {
    const ExsGroup* group = nullptr;  ///< null: the zones without a group
    std::vector<ExsPlacedZone> zones; ///< by ascending low key, then in file order
};

/// The layers of an instrument: first that of the zones without a group, then one for each group
/// that has zones, in the order of the groups; always at least one. Zones without a sample, and
/// zones whose own range of keys or velocities is empty, are omitted. The layers refer to
/// `instrument`. Linear time.
std::vector<ExsLayer> exs_layers(const ExsInstrument& instrument);

/// The indices of the samples that a zone of the layers plays, in ascending order.
std::vector<std::size_t> exs_used_samples(const ExsInstrument& instrument,
                                          const std::vector<ExsLayer>& layers);

} // namespace lumo::platform
