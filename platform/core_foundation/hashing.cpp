// A multiply-and-fold hash of 8-byte words, seeded once with the random bytes that the kernel
// provides to each process (AT_RANDOM).
#include "core_foundation/hashing.h"

#include <sys/auxv.h>

#include <cstring>

namespace lumo::platform {
namespace {

constexpr std::uint64_t multiplier = 0x9E3779B97F4A7C15; // 2^64 divided by the golden ratio, odd

std::uint64_t load_word(const unsigned char* bytes, std::size_t size) noexcept {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, size);
    return word;
}

std::uint64_t random_seed() noexcept {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the kernel passes the address as a number
    const auto* bytes = reinterpret_cast<const unsigned char*>(getauxval(AT_RANDOM));
    return bytes == nullptr ? multiplier : load_word(bytes, sizeof(std::uint64_t));
}

std::uint64_t seed() noexcept {
    static const std::uint64_t value = random_seed();
    return value;
}

std::uint64_t fold(std::uint64_t a, std::uint64_t b) noexcept {
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

std::uint32_t finish(std::uint64_t state) noexcept {
    return static_cast<std::uint32_t>(state ^ (state >> 32));
}

} // namespace

std::uint32_t hash_bytes(const void* bytes, std::size_t size) noexcept {
    const auto* at = static_cast<const unsigned char*>(bytes);
    std::uint64_t state = seed() ^ (size * multiplier);
    for (; size >= 8; at += 8, size -= 8) {
        state = fold(state ^ load_word(at, 8), multiplier);
    }
    if (size != 0) {
        state = fold(state ^ load_word(at, size), multiplier);
    }
    return finish(fold(state, seed() | 1));
}

std::uint32_t hash_word(std::uint64_t word) noexcept {
    return finish(fold(fold(seed() ^ word, multiplier), seed() | 1));
}

} // namespace lumo::platform
