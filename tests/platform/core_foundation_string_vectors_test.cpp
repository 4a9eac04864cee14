// Strings, compared with recorded results of CoreFoundation.
#include "platform/core_foundation_vectors.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace lumo::test {
namespace {

/// Whether the platform writes text in this encoding. The tool writes no other.
bool can_write(const std::string& encoding) {
    return encoding == "UTF8" || encoding == "UTF16" || encoding == "UTF16BE" ||
           encoding == "ASCII";
}

Ref<CFStringRef> create(const Json& row, CFStringEncoding encoding) {
    const std::string bytes = from_hex(row["bytes"]);
    if (row["fn"] == "CFStringCreateWithCString") {
        return adopt(CFStringCreateWithCString(nullptr, bytes.c_str(), encoding));
    }
    return adopt(CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(bytes.data()),
                                         static_cast<CFIndex>(bytes.size()), encoding,
                                         row["external"].get<bool>()));
}

TEST(StringVectors, CreationAgreesWithCoreFoundation) {
    const Json vectors = read_vectors("string-create.json");
    ConformanceTable table;
    for (const Json& row : vectors) {
        const std::string name = row["fn"];
        const auto encoding = encoding_named(row["encoding"]);
        if (!encoding) {
            table.not_offered(name, row["encoding"]);
            continue;
        }
        const auto string = create(row, *encoding);
        const Json units = string ? units_of(string.get()) : Json{};
        if (is_own_core_foundation && row["name"].get<std::string>().starts_with("stray-a9")) {
            EXPECT_EQ(units, Json{}) << row.dump();
            table.differs_on_purpose(name, "the byte A9 is no more valid UTF-8 than any other");
            continue;
        }
        table.compare(name, units == row["utf16"], row.dump() + ", got " + units.dump());
    }
    table.print("string-create");
    EXPECT_GT(table.equal(), 0U);
    EXPECT_EQ(table.differing(), 0U);
}

TEST(StringVectors, MaximumSizesAgreeWithCoreFoundation) {
    const Json vectors = read_vectors("string-maxsize.json");
    ConformanceTable table;
    for (const Json& row : vectors) {
        const std::string name = "CFStringGetMaximumSizeForEncoding";
        const auto encoding = encoding_named(row["encoding"]);
        if (!encoding) {
            table.not_offered(name, row["encoding"]);
            continue;
        }
        const CFIndex size = CFStringGetMaximumSizeForEncoding(row["length"], *encoding);
        table.compare(name, size == row["max"], row.dump() + ", got " + std::to_string(size));
    }
    table.print("string-maxsize");
    EXPECT_GT(table.equal(), 0U);
    EXPECT_EQ(table.differing(), 0U);
}

/// Compares each row of the vectors whose encoding is offered.
void compare_rows(const std::string& vectors, const std::string& function,
                  void (*compare)(ConformanceTable&, const Json&)) {
    ConformanceTable table;
    for (const Json& row : read_vectors(vectors + ".json")) {
        if (can_write(row["encoding"])) {
            compare(table, row);
        } else {
            table.not_offered(function, row["encoding"]);
        }
    }
    table.print(vectors);
    EXPECT_GT(table.equal(), 0U);
    EXPECT_EQ(table.differing(), 0U);
}

void compare_c_string(ConformanceTable& table, const Json& row) {
    const std::string name = "CFStringGetCString";
    const auto string = string_of_units(row["utf16"]);
    std::string buffer(256, '\xAA');
    const bool ok = CFStringGetCString(string.get(), buffer.data(), row["bufsize"],
                                       *encoding_named(row["encoding"])) != 0;
    if (row.value("oob", false)) {
        EXPECT_FALSE(ok && is_own_core_foundation) << row.dump();
        table.differs_on_purpose(name, "nothing is written beyond the buffer");
        return;
    }
    const std::string expected = from_hex(row["written"]);
    // After a failure a caller can use the first byte only.
    const std::size_t compared = ok ? expected.size() : std::min<std::size_t>(expected.size(), 1);
    const bool is_same = buffer.compare(0, compared, expected, 0, compared) == 0;
    const std::size_t size = row["bufsize"];
    const bool is_within = buffer.find_first_not_of('\xAA', size) == std::string::npos;
    table.compare(name, ok == row["ok"] && is_same && is_within,
                  row.dump() + ", got " + (ok ? "true " : "false ") +
                      to_hex(buffer.substr(0, expected.size() + 1)));
}

TEST(StringVectors, CStringsAgreeWithCoreFoundation) {
    compare_rows("string-getcstring", "CFStringGetCString", compare_c_string);
}

void compare_bytes(ConformanceTable& table, const Json& row) {
    const std::string name = "CFStringGetBytes";
    const bool only_counts = row["buffer"].is_null();
    const std::size_t size = only_counts ? 0 : row["buffer"].get<std::size_t>();
    const auto string = string_of_units(row["utf16"]);
    std::string buffer(256, '\xAA');
    CFIndex used = -1;
    const CFIndex converted = CFStringGetBytes(
        string.get(), CFRangeMake(0, CFStringGetLength(string.get())),
        *encoding_named(row["encoding"]), row["loss"].get<UInt8>(), row["external"].get<bool>(),
        only_counts ? nullptr : reinterpret_cast<UInt8*>(buffer.data()), static_cast<CFIndex>(size),
        &used);
    const bool is_within = buffer.find_first_not_of('\xAA', size) == std::string::npos;
    if (is_own_core_foundation && !only_counts && row["used"] > size) {
        EXPECT_TRUE(is_within && used == 0 && converted == 0) << row.dump();
        table.differs_on_purpose(name, "no more is used than the buffer has");
        return;
    }
    const std::string bytes = only_counts ? "" : from_hex(row["bytes"]);
    table.compare(name,
                  converted == row["converted"] && used == row["used"] && is_within &&
                      buffer.compare(0, bytes.size(), bytes) == 0,
                  row.dump() + ", got " + std::to_string(converted) + ' ' + std::to_string(used) +
                      ' ' + to_hex(buffer.substr(0, bytes.size())));
}

TEST(StringVectors, BytesAgreeWithCoreFoundation) {
    compare_rows("string-getbytes", "CFStringGetBytes", compare_bytes);
}

Ref<CFMutableDictionaryRef> make_dictionary() {
    return adopt(CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks,
                                           &kCFTypeDictionaryValueCallBacks));
}

/// The value that a dictionary holds after two equal keys were set.
Json value_set_last() {
    const auto dictionary = make_dictionary();
    for (const char* value : {"first", "second"}) {
        const auto key = adopt(CFStringCreateWithCString(nullptr, "key", kCFStringEncodingUTF8));
        const auto text = adopt(CFStringCreateWithCString(nullptr, value, kCFStringEncodingUTF8));
        CFDictionarySetValue(dictionary.get(), key.get(), text.get());
    }
    std::array<char, 16> buffer{};
    const void* value = nullptr;
    CFDictionaryGetKeysAndValues(dictionary.get(), nullptr, &value);
    CFStringGetCString(static_cast<CFStringRef>(value), buffer.data(), buffer.size(),
                       kCFStringEncodingUTF8);
    return buffer.data();
}

void compare_key_order(ConformanceTable& table, const Json& recorded) {
    const std::string row = "entries of a dictionary";
    table.compare(row, value_set_last() == recorded["SetValue twice"]["value"],
                  "CFDictionarySetValue");
    table.not_offered(row, "CFDictionaryAddValue");
    table.differs_on_purpose(row, "they keep the order in which they came in");
}

TEST(StringVectors, EqualityAndOrderAgreeWithCoreFoundation) {
    const Json vectors = read_vectors("string-equality.json");
    ConformanceTable table;
    for (const Json& row : vectors["pairs"]) {
        const auto a = string_of_units(row["a"]);
        const auto b = string_of_units(row["b"]);
        const std::string pair = row.dump();
        table.compare("CFEqual", (CFEqual(a.get(), b.get()) != 0) == row["equal"], pair);
        if (row["equal"]) {
            table.compare("CFHash of equal strings", CFHash(a.get()) == CFHash(b.get()), pair);
        }
        table.not_offered("CFStringCompare", "the function");
        const auto dictionary = make_dictionary();
        CFDictionarySetValue(dictionary.get(), a.get(), kCFBooleanTrue);
        CFDictionarySetValue(dictionary.get(), b.get(), kCFBooleanTrue);
        table.compare("keys of a dictionary",
                      CFDictionaryGetCount(dictionary.get()) == row["dictCountAfterBoth"], pair);
    }
    compare_key_order(table, vectors["dictionary"]);
    table.print("string-equality");
    EXPECT_GT(table.equal(), 0U);
    EXPECT_EQ(table.differing(), 0U);
}

} // namespace
} // namespace lumo::test
