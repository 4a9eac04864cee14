// Hashing of bytes and words. The values differ from run to run, so that nobody can prepare keys
// that collide; no order of anything depends on them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lumo::platform {

/// A hash of `size` bytes.
std::uint32_t hash_bytes(const void* bytes, std::size_t size) noexcept;
/// A hash of a word.
std::uint32_t hash_word(std::uint64_t word) noexcept;

} // namespace lumo::platform
