// Any bytes as an EXS24 file, and the state of whatever they hold.
#include "sampler/exs_layers.h"
#include "sampler/exs_reader.h"
#include "sampler/exs_state.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (const auto instrument = lumo::platform::read_exs({data, size})) {
        const auto layers = lumo::platform::exs_layers(*instrument);
        lumo::platform::exs_used_samples(*instrument, layers);
        lumo::platform::exs_instrument_state(*instrument, layers, "Fuzz.exs");
    }
    return 0;
}
