// Sound files for tests.
#pragma once

#include <string>

namespace lumo::test {

/// The bytes of a WAV file: 16 bits, one channel, `frames` frames of a ramp.
std::string wav_bytes(int frames);

} // namespace lumo::test
