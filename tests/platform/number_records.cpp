// Whole numbers are made with the type that their record names, reals with their width.
#include "platform/number_records.h"

#include <array>
#include <cstdint>
#include <cstdlib>

namespace lumo::test {
namespace {

/// A number of up to 128 bits, made with the number type that has no public name and takes two
/// 64-bit words.
Ref<CFNumberRef> make_wide(const std::string& decimal) {
    __extension__ using Wide = unsigned __int128;
    Wide value = 0;
    for (const char c : decimal) {
        value = c == '-' ? value : value * 10 + static_cast<unsigned>(c - '0');
    }
    value = decimal.front() == '-' ? -value : value;
    const std::array<std::uint64_t, 2> words = {static_cast<std::uint64_t>(value >> 64),
                                                static_cast<std::uint64_t>(value)};
    return adopt(CFNumberCreate(nullptr, static_cast<CFNumberType>(17), words.data()));
}

Ref<CFNumberRef> make_integer(const Json& source) {
    const std::string& text = source["v"].get_ref<const std::string&>();
    if (source.value("w", 64) == 128) {
        return make_wide(text);
    }
    // Supported machines are little-endian: the low bytes of the value come first.
    const std::int64_t value = std::strtoll(text.c_str(), nullptr, 10);
    return adopt(CFNumberCreate(nullptr, number_types().at(source.value("ct", "SInt64")), &value));
}

Ref<CFNumberRef> make_real(const Json& source) {
    const double value = std::strtod(source["v"].get_ref<const std::string&>().c_str(), nullptr);
    const auto single = static_cast<float>(value);
    return source.value("w", 64) == 32
               ? adopt(CFNumberCreate(nullptr, kCFNumberFloat32Type, &single))
               : adopt(CFNumberCreate(nullptr, kCFNumberFloat64Type, &value));
}

} // namespace

const std::map<std::string, CFNumberType>& number_types() {
    static const std::map<std::string, CFNumberType> types = {{"SInt8", kCFNumberSInt8Type},
                                                              {"SInt16", kCFNumberSInt16Type},
                                                              {"SInt32", kCFNumberSInt32Type},
                                                              {"SInt64", kCFNumberSInt64Type},
                                                              {"Float32", kCFNumberFloat32Type},
                                                              {"Float64", kCFNumberFloat64Type},
                                                              {"Char", kCFNumberCharType},
                                                              {"Short", kCFNumberShortType},
                                                              {"Int", kCFNumberIntType},
                                                              {"Long", kCFNumberLongType},
                                                              {"LongLong", kCFNumberLongLongType},
                                                              {"Float", kCFNumberFloatType},
                                                              {"Double", kCFNumberDoubleType},
                                                              {"CFIndex", kCFNumberCFIndexType},
                                                              {"NSInteger", kCFNumberNSIntegerType},
                                                              {"CGFloat", kCFNumberCGFloatType}};
    return types;
}

Ref<CFNumberRef> make_number(const Json& source) {
    return source["t"] == "int" ? make_integer(source) : make_real(source);
}

} // namespace lumo::test
