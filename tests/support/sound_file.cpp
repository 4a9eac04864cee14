// A RIFF header of 44 bytes (format and data chunk), then the samples.
#include "support/sound_file.h"

#include <cstdint>

namespace lumo::test {
namespace {

void append_number(std::string& bytes, std::uint32_t value, int count) {
    for (int i = 0; i < count; ++i) {
        bytes += static_cast<char>(value >> (8 * i) & 0xff);
    }
}

} // namespace

std::string wav_bytes(int frames) {
    constexpr std::uint32_t rate = 44100;
    const auto data_size = static_cast<std::uint32_t>(frames) * 2;
    std::string bytes = "RIFF";
    append_number(bytes, 36 + data_size, 4);
    bytes += "WAVEfmt ";
    append_number(bytes, 16, 4);
    append_number(bytes, 1, 2); // PCM
    append_number(bytes, 1, 2); // channels
    append_number(bytes, rate, 4);
    append_number(bytes, 2 * rate, 4);
    append_number(bytes, 2, 2);  // bytes per frame
    append_number(bytes, 16, 2); // bits
    bytes += "data";
    append_number(bytes, data_size, 4);
    for (int i = 0; i < frames; ++i) {
        append_number(bytes, static_cast<std::uint32_t>(i) & 0x7fff, 2);
    }
    return bytes;
}

} // namespace lumo::test
