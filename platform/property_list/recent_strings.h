// A cache of the strings that a reader created last. A state repeats a few keys thousands of times,
// and each should be created only once.
#pragma once

#include "core_foundation/string.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace lumo::platform {

/// Keeps one string per slot; a new one replaces it. Thus memory and time are bounded for any
/// input, but equal strings are only usually, not always, one object.
class RecentStrings {
public:
    /// The string of `ascii`, from the cache or new.
    Owned get(std::string_view ascii) {
        if (ascii.size() > max_size) {
            return make_string_ascii(ascii);
        }
        Owned& slot = slots_[slot_of(ascii)];
        if (!slot || as<String>(slot.get()).ascii() != ascii) {
            slot = make_string_ascii(ascii);
        }
        return share_unshared(slot.get());
    }

private:
    static constexpr std::size_t max_size = 64;
    static constexpr unsigned slot_bits = 10;

    /// A hash of the length and the first and last bytes, in which keys differ.
    static std::size_t slot_of(std::string_view text) {
        std::uint64_t first = 0;
        std::uint64_t last = 0;
        if (text.size() >= 8) {
            std::memcpy(&first, text.data(), 8);
            std::memcpy(&last, text.data() + text.size() - 8, 8);
        } else {
            std::memcpy(&first, text.data(), text.size());
        }
        const std::uint64_t mixed = (first ^ (last << 1 | last >> 63)) + text.size();
        return static_cast<std::size_t>(mixed * 0x9E3779B97F4A7C15u >> (64 - slot_bits));
    }

    std::array<Owned, std::size_t{1} << slot_bits> slots_;
};

} // namespace lumo::platform
