// Encodes strings into bytes, one character at a time; ASCII strings in ASCII or UTF-8 are copied.
#include "base/utf8.h"
#include "core_foundation/encodings.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace lumo::platform {
namespace {

/// A character and the number of UTF-16 units that it takes in the string.
struct Character {
    char32_t value;
    std::size_t units;
};

/// The bytes of one character; the length is 0 when it cannot be encoded.
struct Bytes {
    std::array<char, 4> bytes;
    std::size_t length;
};

bool is_high_surrogate(char32_t unit) noexcept {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
bool is_low_surrogate(char32_t unit) noexcept {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// The character at `index`; an unpaired surrogate is returned as it is.
Character character_at(const String& string, std::size_t index, std::size_t last) noexcept {
    const char32_t unit = string.unit(index);
    if (is_high_surrogate(unit) && index + 1 < last) {
        const char32_t next = string.unit(index + 1);
        if (is_low_surrogate(next)) {
            return {0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00), 2};
        }
    }
    return {unit, 1};
}

Bytes utf8(char32_t c) noexcept {
    Bytes result{{}, 0};
    if (is_unicode_scalar(c)) {
        result.length = encode_utf8(c, result.bytes.data());
    }
    return result;
}

Bytes utf16(char32_t unit, std::endian order) noexcept {
    const auto high = static_cast<char>(unit >> 8);
    const auto low = static_cast<char>(unit);
    return order == std::endian::big ? Bytes{{high, low}, 2} : Bytes{{low, high}, 2};
}

Bytes ascii(char32_t unit, std::uint8_t loss_byte) noexcept {
    const auto byte = static_cast<char>(unit < 0x80 ? unit : loss_byte);
    return {{byte}, unit < 0x80 || loss_byte != 0 ? 1U : 0U};
}

Bytes bytes_of(char32_t value, CFStringEncoding encoding, std::uint8_t loss_byte) noexcept {
    switch (encoding) {
    case kCFStringEncodingUTF8:
        return utf8(value);
    case kCFStringEncodingASCII:
        return ascii(value, loss_byte);
    case kCFStringEncodingUTF16:
        return utf16(value, std::endian::native);
    case kCFStringEncodingUTF16BE:
        return utf16(value, std::endian::big);
    case kCFStringEncodingUTF16LE:
        return utf16(value, std::endian::little);
    default:
        return {{}, 0};
    }
}

/// Writes bytes to a buffer of limited size, or counts them when there is none.
class BoundedOutput {
public:
    BoundedOutput(std::uint8_t* out, std::size_t room)
        : at_{out}, left_{out == nullptr ? ~0ULL : room} {}

    /// Writes all the bytes, or none and returns false when they do not fit.
    bool put(const void* bytes, std::size_t count) noexcept {
        if (count > left_) {
            return false;
        }
        if (at_ != nullptr) {
            std::memcpy(at_, bytes, count);
            at_ += count;
        }
        left_ -= count;
        written_ += count;
        return true;
    }

    std::size_t left() const noexcept { return left_; }
    std::size_t written() const noexcept { return written_; }

private:
    std::uint8_t* at_;
    std::size_t left_;
    std::size_t written_ = 0;
};

} // namespace

Encoded encode(const String& string, std::size_t first, std::size_t last, CFStringEncoding encoding,
               std::uint8_t loss_byte, bool is_external, std::uint8_t* out,
               std::size_t room) noexcept {
    BoundedOutput output{out, room};
    const bool is_utf8 = encoding == kCFStringEncodingUTF8;
    if (string.is_ascii() && (is_utf8 || encoding == kCFStringEncodingASCII)) {
        const std::size_t count = std::min(last - first, output.left());
        output.put(string.ascii().data() + first, count);
        return {count, count};
    }
    if (is_external && encoding == kCFStringEncodingUTF16) {
        const Bytes mark = utf16(0xFEFF, std::endian::native);
        if (!output.put(mark.bytes.data(), mark.length)) {
            return {0, 0};
        }
    }
    std::size_t at = first;
    while (at < last) {
        const Character character =
            is_utf8 ? character_at(string, at, last) : Character{string.unit(at), 1};
        const Bytes bytes = bytes_of(character.value, encoding, loss_byte);
        if (bytes.length == 0 || !output.put(bytes.bytes.data(), bytes.length)) {
            break;
        }
        at += character.units;
    }
    return {at - first, output.written()};
}

} // namespace lumo::platform
