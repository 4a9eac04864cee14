// Numbers as objects. Integers that are common in property lists are shared static objects.
#include "core_foundation/number.h"

#include "core_foundation/hashing.h"

#include <array>
#include <bit>
#include <cmath>
#include <utility>

namespace lumo::platform {
namespace {

constexpr std::int64_t first_shared = -1;
constexpr std::size_t shared_count = 257; // -1 to 255

template <std::size_t... I>
constexpr std::array<Number, shared_count> number_row(std::index_sequence<I...>) {
    return {Number{first_shared + static_cast<std::int64_t>(I), immortal}...};
}

constinit const std::array<Number, shared_count> shared_numbers =
    number_row(std::make_index_sequence<shared_count>{});

/// Whether `real` equals `integer` exactly; -0.0 is not 0.
bool equal_integer(double real, std::int64_t integer) noexcept {
    return real >= -0x1p63 && real < 0x1p63 && static_cast<std::int64_t>(real) == integer &&
           static_cast<double>(integer) == real && !(integer == 0 && std::signbit(real));
}

bool equal_reals(double a, double b) noexcept {
    return std::isnan(a) ? std::isnan(b) : a == b && std::signbit(a) == std::signbit(b);
}

bool equal_mixed(const Number& whole, double real) noexcept {
    return high_bits(whole) == whole.integer >> 63 && equal_integer(real, whole.integer);
}

} // namespace

Owned make_integer(std::int64_t value) {
    const auto index = static_cast<std::uint64_t>(value) - static_cast<std::uint64_t>(first_shared);
    return Owned{index < shared_count ? &shared_numbers[index] : new Number{value}};
}

Owned make_integer_128(std::int64_t high, std::uint64_t low) {
    return Owned{new WideNumber{high, low}};
}

Owned make_real(double value) {
    return Owned{new Number{NumberKind::real, value}};
}

Owned make_real32(float value) {
    return Owned{new Number{NumberKind::real32, static_cast<double>(value)}};
}

bool equal_numbers(const Number& a, const Number& b) noexcept {
    if (a.is_real()) {
        return b.is_real() ? equal_reals(a.real, b.real) : equal_mixed(b, a.real);
    }
    return b.is_real() ? equal_mixed(a, b.real)
                       : a.integer == b.integer && high_bits(a) == high_bits(b);
}

std::uint32_t hash_number(const Number& number) noexcept {
    if (!number.is_real()) {
        return hash_word(static_cast<std::uint64_t>(number.integer));
    }
    const double real = number.real;
    if (real >= -0x1p63 && real < 0x1p63 && std::trunc(real) == real) {
        return hash_word(static_cast<std::uint64_t>(static_cast<std::int64_t>(real)));
    }
    return std::isnan(real) ? hash_word(0) : hash_word(std::bit_cast<std::uint64_t>(real));
}

} // namespace lumo::platform
