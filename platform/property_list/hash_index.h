// A hash index of numbers, for tables whose entries are stored elsewhere.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace lumo::platform {

/// Uses open addressing; at most three quarters of the slots are in use.
class HashIndex {
public:
    static constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();

    /// The number stored under `hash` for which `is_wanted(number)` holds. If there is none, stores
    /// `fresh` and returns it.
    template <class IsWanted>
    std::uint32_t find_or_add(std::uint32_t hash, std::uint32_t fresh, IsWanted is_wanted) {
        if (taken_ >= slots_.size() / 4 * 3) {
            grow();
        }
        for (std::size_t at = hash & mask();; at = (at + 1) & mask()) {
            Slot& slot = slots_[at];
            if (slot.number == none) {
                slot = {hash, fresh};
                ++taken_;
                return fresh;
            }
            if (slot.hash == hash && is_wanted(slot.number)) {
                return slot.number;
            }
        }
    }

private:
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t number = none;
    };

    std::size_t mask() const { return slots_.size() - 1; }

    void grow() {
        std::vector<Slot> old(slots_.empty() ? 256 : slots_.size() * 2);
        old.swap(slots_);
        for (const Slot& slot : old) {
            if (slot.number != none) {
                std::size_t at = slot.hash & mask();
                while (slots_[at].number != none) {
                    at = (at + 1) & mask();
                }
                slots_[at] = slot;
            }
        }
    }

    std::vector<Slot> slots_;
    std::size_t taken_ = 0;
};

} // namespace lumo::platform
