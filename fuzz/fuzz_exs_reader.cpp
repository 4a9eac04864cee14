// Reads any bytes as an EXS24 file and builds the state of the instrument.
#include "sampler/exs_load.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    lumo::platform::LoadedInstrument loaded;
    lumo::platform::load_exs_bytes({data, size}, "Fuzz.exs", loaded);
    return 0;
}
