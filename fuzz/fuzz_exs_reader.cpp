// Any bytes as an EXS24 file, and the state of whatever they hold.
#include "sampler/exs_load.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    lumo::platform::LoadedInstrument loaded;
    lumo::platform::load_exs_bytes({data, size}, "Fuzz.exs", loaded);
    return 0;
}
