// Numbers, compared with recorded results of CoreFoundation.
#include "platform/core_foundation_vectors.h"

#include <array>
#include <cstdlib>
#include <cstring>

namespace lumo::test {
namespace {

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

std::size_t size_of(CFNumberType type) {
    static const std::array<std::size_t, 17> sizes = {0, 1, 2, 4, 8, 4, 8, 1, 2,
                                                      4, 8, 8, 4, 8, 8, 8, 8};
    return sizes.at(static_cast<std::size_t>(type));
}

bool is_real(CFNumberType type) {
    return type == kCFNumberFloat32Type || type == kCFNumberFloat64Type ||
           type == kCFNumberFloatType || type == kCFNumberDoubleType ||
           type == kCFNumberCGFloatType;
}

/// A decimal of up to 128 bits as the two words of the number type that has no public name.
Holder<CFNumberRef> make_wide(const std::string& decimal) {
    __extension__ using Wide = unsigned __int128;
    Wide value = 0;
    for (const char c : decimal) {
        value = c == '-' ? value : value * 10 + static_cast<unsigned>(c - '0');
    }
    value = decimal.front() == '-' ? -value : value;
    const std::array<std::uint64_t, 2> words = {static_cast<std::uint64_t>(value >> 64),
                                                static_cast<std::uint64_t>(value)};
    return hold(CFNumberCreate(nullptr, static_cast<CFNumberType>(17), words.data()));
}

Holder<CFNumberRef> make_integer(const Json& source) {
    const std::string& text = source["v"].get_ref<const std::string&>();
    if (source.value("w", 64) == 128) {
        return make_wide(text);
    }
    // The machines that run this are little-endian: the low bytes of the value come first.
    const std::int64_t value = std::strtoll(text.c_str(), nullptr, 10);
    return hold(CFNumberCreate(nullptr, number_types().at(source.value("ct", "SInt64")), &value));
}

Holder<CFNumberRef> make_real(const Json& source) {
    const double value = std::strtod(source["v"].get_ref<const std::string&>().c_str(), nullptr);
    const auto single = static_cast<float>(value);
    return source.value("w", 64) == 32
               ? hold(CFNumberCreate(nullptr, kCFNumberFloat32Type, &single))
               : hold(CFNumberCreate(nullptr, kCFNumberFloat64Type, &value));
}

Holder<CFTypeRef> make_object(const Json& source) {
    if (source["t"] == "bool") {
        return hold(CFRetain(source["v"].get<bool>() ? kCFBooleanTrue : kCFBooleanFalse));
    }
    return Holder<CFTypeRef>{
        (source["t"] == "int" ? make_integer(source) : make_real(source)).release()};
}

std::string formatted(const std::array<unsigned char, 16>& buffer, CFNumberType type) {
    std::array<char, 64> text{};
    if (is_real(type)) {
        float single = 0;
        double value = 0;
        std::memcpy(&single, buffer.data(), sizeof single);
        std::memcpy(&value, buffer.data(), sizeof value);
        value = size_of(type) == sizeof single ? static_cast<double>(single) : value;
        std::snprintf(text.data(), text.size(), "%.17g", value);
        return text.data();
    }
    std::int64_t value = 0;
    std::memcpy(&value, buffer.data(), size_of(type));
    const auto unused_bits = static_cast<int>(64 - 8 * size_of(type));
    value =
        static_cast<std::int64_t>(static_cast<std::uint64_t>(value) << unused_bits) >> unused_bits;
    return std::to_string(value);
}

void compare_conversion(ConformanceTable& table, const Json& source, CFNumberRef number,
                        const std::string& type_name, const Json& expected) {
    std::array<unsigned char, 16> buffer{};
    buffer.fill(0xAA);
    const CFNumberType type = number_types().at(type_name);
    const bool ok = CFNumberGetValue(number, type, buffer.data()) != 0;
    const std::string value = formatted(buffer, type);
    const bool is_untouched_behind = buffer[size_of(type)] == 0xAA;
    const bool is_lowest = source["v"] == "-170141183460469231731687303715884105728";
    if (is_lowest && is_real(type)) {
        EXPECT_TRUE(ok);
        EXPECT_EQ(value, "-1.7014118346046923e+38");
        table.differs_on_purpose("CFNumberGetValue", "-2^127 as a real keeps its sign");
        return;
    }
    const bool same_value = expected.value("ub", false) || Json(value) == expected["v"];
    table.compare("CFNumberGetValue", ok == expected["ok"] && same_value && is_untouched_behind,
                  source.dump() + " as " + type_name + ": " + (ok ? "true " : "false ") + value +
                      ", recorded " + expected.dump());
}

TEST(NumberVectors, ConversionsAgreeWithCoreFoundation) {
    const auto vectors = read_vectors("number/getvalue.json");
    if (!vectors) {
        GTEST_SKIP() << "no recorded results";
    }
    ConformanceTable table;
    for (const Json& row : (*vectors)["getvalue"]) {
        const auto object = make_object(row["src"]);
        const auto number = static_cast<CFNumberRef>(object.get());
        const std::string source = row["src"].dump();
        table.compare("CFNumberGetType", CFNumberGetType(number) == number_types().at(row["type"]),
                      source);
        table.compare("CFNumberGetByteSize", CFNumberGetByteSize(number) == row["byteSize"],
                      source);
        table.compare("CFNumberIsFloatType", (CFNumberIsFloatType(number) != 0) == row["isFloat"],
                      source);
        for (const auto& [type, expected] : row["get"].items()) {
            compare_conversion(table, row["src"], number, type, expected);
        }
    }
    table.print("number/getvalue");
    EXPECT_GT(table.equal(), 0U);
    EXPECT_EQ(table.differing(), 0U);
}

TEST(NumberVectors, EqualityAgreesWithCoreFoundation) {
    const auto vectors = read_vectors("number/compare.json");
    if (!vectors) {
        GTEST_SKIP() << "no recorded results";
    }
    ConformanceTable table;
    for (const Json& row : (*vectors)["pairs"]) {
        const auto a = make_object(row["a"]);
        const auto b = make_object(row["b"]);
        const std::string pair = row["a"].dump() + " and " + row["b"].dump();
        table.compare("CFEqual", (CFEqual(a.get(), b.get()) != 0) == row["equal"], pair);
        if (row["equal"]) {
            table.compare("CFHash of equal numbers", CFHash(a.get()) == CFHash(b.get()), pair);
        }
        if (row.contains("compare")) {
            table.not_offered("CFNumberCompare", "the function");
        }
    }
    table.print("number/compare");
    EXPECT_GT(table.equal(), 0U);
    EXPECT_EQ(table.differing(), 0U);
}

} // namespace
} // namespace lumo::test
