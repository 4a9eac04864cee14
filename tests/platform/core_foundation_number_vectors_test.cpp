// Numbers, compared with recorded results of CoreFoundation.
#include "platform/core_foundation_vectors.h"
#include "platform/number_records.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace lumo::test {
namespace {

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

Ref<CFTypeRef> make_object(const Json& source) {
    if (source["t"] == "bool") {
        return retain(source["v"].get<bool>() ? kCFBooleanTrue : kCFBooleanFalse);
    }
    return make_number(source);
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
    if (is_own_core_foundation && is_lowest && is_real(type)) {
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
    const Json vectors = read_vectors("number-getvalue.json");
    ConformanceTable table;
    for (const Json& row : vectors) {
        const auto object = make_object(row["src"]);
        const auto number = static_cast<CFNumberRef>(object.get());
        const std::string source = row["src"].dump();
        table.not_offered("CFNumberGetType, CFNumberGetByteSize", "the functions");
        table.compare("CFNumberIsFloatType", (CFNumberIsFloatType(number) != 0) == row["isFloat"],
                      source);
        for (const auto& [type, expected] : row["get"].items()) {
            compare_conversion(table, row["src"], number, type, expected);
        }
    }
    table.print("number-getvalue");
    EXPECT_GT(table.equal(), 0U);
    EXPECT_EQ(table.differing(), 0U);
}

TEST(NumberVectors, EqualityAgreesWithCoreFoundation) {
    const Json vectors = read_vectors("number-compare.json");
    ConformanceTable table;
    for (const Json& row : vectors) {
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
    table.print("number-compare");
    EXPECT_GT(table.equal(), 0U);
    EXPECT_EQ(table.differing(), 0U);
}

} // namespace
} // namespace lumo::test
