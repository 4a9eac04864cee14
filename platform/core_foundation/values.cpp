// Null, booleans, data, dates and UIDs.
#include "core_foundation/values.h"

#include "core_foundation/hashing.h"

#include <cstring>
#include <new>

namespace lumo::platform {
namespace {

constinit const Object the_null{Kind::null, 0, immortal};
constinit const Object the_false{Kind::boolean, 0, immortal};
constinit const Object the_true{Kind::boolean, 1, immortal};

} // namespace

Owned make_null() noexcept {
    return Owned{&the_null};
}

Owned make_boolean(bool value) noexcept {
    return Owned{value ? &the_true : &the_false};
}

bool boolean_value(const Object& boolean) noexcept {
    return boolean.detail != 0;
}

Owned make_data(std::size_t size, std::uint8_t** bytes) {
    auto* const storage = static_cast<std::uint8_t*>(::operator new(sizeof(Data) + size));
    *bytes = storage + sizeof(Data);
    return Owned{new (storage) Data{*bytes, size}};
}

Owned make_data(std::span<const std::uint8_t> bytes) {
    std::uint8_t* copy = nullptr;
    Owned data = make_data(bytes.size(), &copy);
    if (!bytes.empty()) {
        std::memcpy(copy, bytes.data(), bytes.size());
    }
    return data;
}

Owned borrow_data(std::span<const std::uint8_t> bytes) {
    return Owned{new Data{bytes.data(), bytes.size()}};
}

bool equal_data(const Data& a, const Data& b) noexcept {
    return a.length == b.length && !hashes_differ(a.hash_cache, b.hash_cache) &&
           (a.length == 0 || std::memcmp(a.bytes().data(), b.bytes().data(), a.length) == 0);
}

std::uint32_t hash_data(const Data& data) noexcept {
    return cached_hash(data.hash_cache, data.bytes().data(), data.length);
}

Owned make_date(double seconds) {
    return Owned{new Date{seconds}};
}

Owned make_uid(std::uint32_t value) {
    return Owned{new Uid{value}};
}

} // namespace lumo::platform

using namespace lumo::platform;

const CFBooleanRef kCFBooleanFalse = reinterpret_cast<CFBooleanRef>(&the_false);
const CFBooleanRef kCFBooleanTrue = reinterpret_cast<CFBooleanRef>(&the_true);
const CFNullRef kCFNull = reinterpret_cast<CFNullRef>(&the_null);

CFTypeID CFBooleanGetTypeID() {
    return static_cast<CFTypeID>(Kind::boolean);
}
CFTypeID CFDataGetTypeID() {
    return static_cast<CFTypeID>(Kind::data);
}
CFTypeID CFDateGetTypeID() {
    return static_cast<CFTypeID>(Kind::date);
}

Boolean CFBooleanGetValue(CFBooleanRef boolean) {
    return boolean_value(as<Object>(boolean));
}

CFDataRef CFDataCreate(CFAllocatorRef, const UInt8* bytes, CFIndex length) {
    return reinterpret_cast<CFDataRef>(
        make_data({bytes, static_cast<std::size_t>(length)}).release());
}

CFDataRef CFDataCreateWithBytesNoCopy(CFAllocatorRef, const UInt8* bytes, CFIndex length,
                                      CFAllocatorRef deallocator) {
    if (deallocator != kCFAllocatorNull) {
        return nullptr;
    }
    return reinterpret_cast<CFDataRef>(
        borrow_data({bytes, static_cast<std::size_t>(length)}).release());
}

const UInt8* CFDataGetBytePtr(CFDataRef data) {
    return as<Data>(data).bytes().data();
}

CFIndex CFDataGetLength(CFDataRef data) {
    return static_cast<CFIndex>(as<Data>(data).length);
}

CFDateRef CFDateCreate(CFAllocatorRef, CFAbsoluteTime time) {
    return reinterpret_cast<CFDateRef>(make_date(time).release());
}

CFAbsoluteTime CFDateGetAbsoluteTime(CFDateRef date) {
    return as<Date>(date).time;
}
