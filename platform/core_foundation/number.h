// Numbers: integers of 64 bits, wide integers of 128 bits, reals of double and single precision.
#pragma once

#include "core_foundation/object.h"

namespace lumo::platform {

/// How a number is stored; the `detail` of its object.
enum class NumberKind : std::uint8_t { integer, wide_integer, real, real32 };

/// A number of any kind; only wide integers have further members.
struct Number : Object {
    constexpr explicit Number(std::int64_t value, std::uint32_t count = 1)
        : Object{Kind::number, static_cast<std::uint8_t>(NumberKind::integer), count}, integer{
                                                                                           value} {}
    constexpr Number(NumberKind number_kind, double value)
        : Object{Kind::number, static_cast<std::uint8_t>(number_kind)}, real{value} {}

    NumberKind number_kind() const noexcept { return static_cast<NumberKind>(detail); }
    bool is_real() const noexcept { return number_kind() >= NumberKind::real; }

    union {
        std::int64_t integer; ///< In a wide integer: the low 64 bits.
        double real;          ///< Also of a single-precision number.
    };
};

/// A 128-bit integer, two's complement.
struct WideNumber : Number {
    WideNumber(std::int64_t high_bits, std::uint64_t low_bits)
        : Number{static_cast<std::int64_t>(low_bits)}, high{high_bits} {
        detail = static_cast<std::uint8_t>(NumberKind::wide_integer);
    }

    std::uint64_t low() const noexcept { return static_cast<std::uint64_t>(integer); }

    std::int64_t high;
};

/// The high 64 bits of an integer's 128-bit value.
inline std::int64_t high_bits(const Number& number) noexcept {
    return number.number_kind() == NumberKind::wide_integer
               ? static_cast<const WideNumber&>(number).high
               : number.integer >> 63;
}

/// A 64-bit integer; -1 to 255 are shared objects.
Owned make_integer(std::int64_t value);
/// A 128-bit integer, even when the value fits in 64 bits.
Owned make_integer_128(std::int64_t high, std::uint64_t low);
/// A real of double precision.
Owned make_real(double value);
/// A real whose type is single precision.
Owned make_real32(float value);

/// Whether two numbers have the same value, regardless of kind. NaNs are equal; 0.0 and -0.0 are
/// not.
bool equal_numbers(const Number& a, const Number& b) noexcept;
/// A hash; equal numbers have equal hashes.
std::uint32_t hash_number(const Number& number) noexcept;

} // namespace lumo::platform
