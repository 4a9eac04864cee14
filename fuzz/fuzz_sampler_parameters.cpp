// Reads any bytes as the "data" of class info; parameters that were read must be the same after
// being written and read back.
#include "audio_toolbox/sampler_parameters.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using namespace lumo::platform;
    if (const auto parameters = with_parameter_data({}, {bytes, size})) {
        const auto written = parameter_data(*parameters);
        const auto again = with_parameter_data({}, written);
        if (!again || parameter_data(*again) != written) {
            std::abort();
        }
    }
    return 0;
}
