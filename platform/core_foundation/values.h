// The small kinds: null, booleans, data, dates and the UIDs of keyed archives.
#pragma once

#include "core_foundation/object.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>

namespace lumo::platform {

/// Bytes, stored after the header in the same allocation, or borrowed.
struct Data : Object {
    Data(const std::uint8_t* bytes, std::size_t size)
        : Object{Kind::data}, hash_cache{0}, length{size}, first{bytes} {}

    std::span<const std::uint8_t> bytes() const noexcept { return {first, length}; }

    mutable std::atomic<std::uint32_t> hash_cache; ///< 0 until the hash is computed.
    std::size_t length;
    const std::uint8_t* first;
};

/// A date, in seconds since 2001-01-01 00:00:00 UTC.
struct Date : Object {
    explicit Date(double seconds) : Object{Kind::date}, time{seconds} {}

    double time;
};

/// The UID of a keyed archive: the index of another object in it.
struct Uid : Object {
    explicit Uid(std::uint32_t uid_value) : Object{Kind::uid}, value{uid_value} {}

    std::uint32_t value;
};

/// The null and the two booleans: shared objects that are never freed.
Owned make_null() noexcept;
Owned make_boolean(bool value) noexcept;
/// The value of an object of Kind::boolean.
bool boolean_value(const Object& boolean) noexcept;

/// Data with a copy of the bytes.
Owned make_data(std::span<const std::uint8_t> bytes);
/// Data that refers to the caller's bytes, which must outlive it.
Owned borrow_data(std::span<const std::uint8_t> bytes);
/// Data of `size` bytes, to be filled by the caller through `*bytes` before it is shared.
Owned make_data(std::size_t size, std::uint8_t** bytes);
/// Whether the bytes are the same.
bool equal_data(const Data& a, const Data& b) noexcept;
/// A hash of the bytes, cached in the data.
std::uint32_t hash_data(const Data& data) noexcept;
/// A date, in seconds since 2001-01-01 00:00:00 UTC.
Owned make_date(double seconds);
/// A UID.
Owned make_uid(std::uint32_t value);

} // namespace lumo::platform
