// Recognises audio by its first bytes, given any number of bytes.
#include "sampler/audio_signature.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using namespace lumo::platform;
    const std::span<const std::uint8_t> head(bytes, std::min(size, audio_head_size));
    audio_head(head);
    const std::uint64_t tag = id3_tag_size(head);
    if (tag != 0 && (tag < 10 || tag > (std::uint64_t{1} << 28) + 20)) {
        std::abort();
    }
    return 0;
}
