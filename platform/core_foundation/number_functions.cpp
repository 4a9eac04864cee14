// The C functions of numbers: creates them from scalar types and converts them to scalar types.
#include "core_foundation/number.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

using namespace lumo::platform;

namespace {

/// The 128-bit type, high word first, in which CoreFoundation stores integers beyond 64 bits of
/// property lists. No public header declares it.
constexpr auto sint128_type = static_cast<CFNumberType>(17);

/// The basic type of a number type: one of the four widths of integers or two of reals. An unknown
/// type stops the process.
CFNumberType plain_type(CFNumberType type) noexcept {
    constexpr std::array<CFNumberType, kCFNumberMaxType + 1> plain = {
        CFNumberType{},       kCFNumberSInt8Type,   kCFNumberSInt16Type,  kCFNumberSInt32Type,
        kCFNumberSInt64Type,  kCFNumberFloat32Type, kCFNumberFloat64Type, kCFNumberSInt8Type,
        kCFNumberSInt16Type,  kCFNumberSInt32Type,  kCFNumberSInt64Type,  kCFNumberSInt64Type,
        kCFNumberFloat32Type, kCFNumberFloat64Type, kCFNumberSInt64Type,  kCFNumberSInt64Type,
        kCFNumberFloat64Type};
    if (type < 1 || type > kCFNumberMaxType) {
        __builtin_trap();
    }
    return plain[static_cast<std::size_t>(type)];
}

template <class T>
T load(const void* value) noexcept {
    T loaded;
    std::memcpy(&loaded, value, sizeof loaded);
    return loaded;
}

/// NaN and infinity of single precision become doubles, as on a Mac.
Owned make_single(float value) {
    return std::isfinite(value) ? make_real32(value) : make_real(static_cast<double>(value));
}

Owned make_number(CFNumberType type, const void* value) {
    switch (type) {
    case kCFNumberSInt8Type:
        return make_integer(load<std::int8_t>(value));
    case kCFNumberSInt16Type:
        return make_integer(load<std::int16_t>(value));
    case kCFNumberSInt32Type:
        return make_integer(load<std::int32_t>(value));
    case kCFNumberSInt64Type:
        return make_integer(load<std::int64_t>(value));
    case kCFNumberFloat32Type:
        return make_single(load<float>(value));
    default:
        return make_real(load<double>(value));
    }
}

/// The result of a conversion, and whether it is exact.
template <class T>
struct Converted {
    T value;
    bool exact;
};

/// Truncates a real towards zero; a value out of range becomes the nearest limit, a NaN 0.
template <class T>
Converted<T> integer_from_real(double real) noexcept {
    constexpr double limit = -static_cast<double>(std::numeric_limits<T>::min()); // 2^31 or 2^63
    if (std::isnan(real)) {
        return {0, false};
    }
    if (real >= limit) {
        return {std::numeric_limits<T>::max(), false};
    }
    if (real < -limit) {
        return {std::numeric_limits<T>::min(), false};
    }
    const auto value = static_cast<T>(real);
    return {value, static_cast<double>(value) == real};
}

/// Converts to an integer by its low bits. For the 8 and 16 bit types, values of the unsigned type
/// of the same width are exact too, as on a Mac.
template <class T>
Converted<T> to_integer(const Number& number) noexcept {
    constexpr bool is_narrow = sizeof(T) < sizeof(std::int32_t);
    if (number.is_real()) {
        if constexpr (is_narrow) {
            const auto whole = integer_from_real<std::int32_t>(number.real);
            const auto value = static_cast<T>(whole.value);
            return {value, whole.exact && value == whole.value};
        } else {
            return integer_from_real<T>(number.real);
        }
    }
    const auto value = static_cast<T>(number.integer);
    const std::int64_t zero_extended =
        static_cast<std::int64_t>(static_cast<std::make_unsigned_t<T>>(value));
    const bool fits_unsigned = is_narrow && zero_extended == number.integer;
    return {value, value == number.integer || fits_unsigned};
}

/// The nearest real to an integer of up to 128 bits.
template <class T>
Converted<T> real_from_integer(const Number& number) noexcept {
    __extension__ using Wide = __int128;
    __extension__ using UnsignedWide = unsigned __int128;
    constexpr auto widest = static_cast<Wide>(~static_cast<UnsignedWide>(0) >> 1);
    const Wide whole = static_cast<Wide>(high_bits(number)) * (static_cast<Wide>(1) << 64) +
                       static_cast<Wide>(static_cast<std::uint64_t>(number.integer));
    const T value = static_cast<T>(whole);
    const Wide back = value < static_cast<T>(0x1p127) ? static_cast<Wide>(value) : widest;
    return {value, back == whole};
}

template <class T>
Converted<T> to_real(const Number& number) noexcept {
    if (!number.is_real()) {
        return real_from_integer<T>(number);
    }
    const T value = static_cast<T>(number.real);
    const bool same_width = sizeof(T) == sizeof number.real;
    return {value, same_width || static_cast<double>(value) == number.real};
}

template <class T>
Boolean store(Converted<T> converted, void* value) noexcept {
    std::memcpy(value, &converted.value, sizeof converted.value);
    return converted.exact;
}

} // namespace

CFTypeID CFNumberGetTypeID() {
    return static_cast<CFTypeID>(Kind::number);
}

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType type, const void* value) {
    if (type == sint128_type) {
        const auto words = load<std::array<std::int64_t, 2>>(value);
        return reinterpret_cast<CFNumberRef>(
            make_integer_128(words[0], static_cast<std::uint64_t>(words[1])).release());
    }
    return reinterpret_cast<CFNumberRef>(make_number(plain_type(type), value).release());
}

Boolean CFNumberGetValue(CFNumberRef reference, CFNumberType type, void* value) {
    const auto& number = as<Number>(reference);
    switch (plain_type(type)) {
    case kCFNumberSInt8Type:
        return store(to_integer<std::int8_t>(number), value);
    case kCFNumberSInt16Type:
        return store(to_integer<std::int16_t>(number), value);
    case kCFNumberSInt32Type:
        return store(to_integer<std::int32_t>(number), value);
    case kCFNumberSInt64Type:
        return store(to_integer<std::int64_t>(number), value);
    case kCFNumberFloat32Type:
        return store(to_real<float>(number), value);
    default:
        return store(to_real<double>(number), value);
    }
}

Boolean CFNumberIsFloatType(CFNumberRef number) {
    return as<Number>(number).is_real();
}
