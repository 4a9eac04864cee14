// Hashes bytes and words. The values differ between runs, so colliding keys cannot be prepared; no
// order depends on them.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace lumo::platform {

/// A hash of `size` bytes.
std::uint32_t hash_bytes(const void* bytes, std::size_t size) noexcept;
/// A hash of a word.
std::uint32_t hash_word(std::uint64_t word) noexcept;
/// The hash of the `size` bytes of an object, stored in `cache`; 0 means not computed yet.
inline std::uint32_t cached_hash(std::atomic<std::uint32_t>& cache, const void* bytes,
                                 std::size_t size) noexcept {
    std::uint32_t value = cache.load(std::memory_order_relaxed);
    if (value == 0) {
        value = std::max(hash_bytes(bytes, size), std::uint32_t{1});
        cache.store(value, std::memory_order_relaxed);
    }
    return value;
}
/// Whether two objects are known to differ by their cached hashes, without comparing their bytes.
inline bool hashes_differ(const std::atomic<std::uint32_t>& a,
                          const std::atomic<std::uint32_t>& b) noexcept {
    const std::uint32_t left = a.load(std::memory_order_relaxed);
    const std::uint32_t right = b.load(std::memory_order_relaxed);
    return left != right && left != 0 && right != 0;
}

} // namespace lumo::platform
