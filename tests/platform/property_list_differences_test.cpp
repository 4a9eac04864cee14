// Deliberate differences between the project's own CoreFoundation and Apple's;
// docs/property-lists.md has the reasons. These tests are not built with another CoreFoundation.
#include "platform/binary_list_builder.h"
#include "platform/number_records.h"
#include "platform/property_list_text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace lumo::test {
namespace {

using namespace std::string_literals;

/// The URL made of a string.
Ref<CFURLRef> url_of(const char* text) {
    return adopt(CFURLCreateWithString(nullptr, make_string(text).get(), nullptr));
}

/// The path of a URL, not resolved against a base.
std::string path_of(CFURLRef url) {
    std::array<UInt8, 256> path{};
    EXPECT_TRUE(CFURLGetFileSystemRepresentation(url, false, path.data(), path.size()));
    return reinterpret_cast<const char*>(path.data());
}

} // namespace

TEST(PropertyListDifferences, OpenStepTextIsRefused) {
    EXPECT_EQ(read_and_describe("{ a = b; }"), refused);
    EXPECT_EQ(read_and_describe("b"), refused);
    EXPECT_EQ(read_and_describe("bplist00"), refused);
    EXPECT_EQ(read_and_describe(" "), refused);
}

TEST(PropertyListDifferences, MutableListsAreNotOffered) {
    const auto data = data_of("<true/>");
    EXPECT_EQ(CFPropertyListCreateWithData(nullptr, data.get(), kCFPropertyListMutableContainers,
                                           nullptr, nullptr),
              nullptr);
}

TEST(PropertyListDifferences, EqualValuesAreStoredOnce) {
    EXPECT_EQ(count_of(written(read_list("<array><string>a</string><key>a</key><real>1.5</real>"
                                         "<real>1.5</real><data>AAAA</data><data>AAAA</data>"
                                         "<integer>1000</integer><integer>1000</integer><true/>"
                                         "<true/><dict><key>a</key><string>a</string></dict>"
                                         "</array>")
                                   .get())),
              7u); // the array, the dictionary, and five leaves
}

TEST(PropertyListDifferences, SharedContainersAreStoredOnce) {
    const auto inner = array_of({kCFBooleanTrue});
    const auto list = array_of({inner.get(), inner.get(), inner.get()});
    EXPECT_EQ(count_of(written(list.get())), 3u);
}

TEST(PropertyListDifferences, TheBytesDoNotDependOnHowADictionaryWasFilled) {
    const std::string ascii = "<key>a</key><true/>";
    const std::string prefix = "<key>ab</key><true/>";
    const std::string latin = "<key>a\xC3\xA9</key><false/>";
    const std::string one = written(read_list("<dict>" + ascii + prefix + latin + "</dict>").get());
    EXPECT_EQ(one, written(read_list("<dict>" + latin + prefix + ascii + "</dict>").get()));
    EXPECT_EQ(one, written(read_list("<dict>" + prefix + ascii + latin + "</dict>").get()));
}

TEST(PropertyListDifferences, WideNumbersAreStoredOnceByAllTheirBits) {
    const auto objects_of = [](const char* first, const char* second) {
        const auto wide = [](const char* text) {
            return make_number({{"t", "int"}, {"w", 128}, {"v", text}});
        };
        const std::string file = written(array_of({wide(first).get(), wide(second).get()}).get());
        return to_hex(file.substr(8, file.find('\x14') - 8)) + ", " +
               std::to_string(std::ranges::count(file, '\x14'));
    };
    // The first two numbers have the same low 64 bits: 5.
    EXPECT_EQ(objects_of("18446744073709551621", "36893488147419103237"), "a20102, 2");
    EXPECT_EQ(objects_of("18446744073709551621", "18446744073709551622"), "a20102, 2");
    EXPECT_EQ(objects_of("18446744073709551621", "18446744073709551621"), "a20101, 1");
}

TEST(PropertyListDifferences, KeysAreInTheOrderOfTheirUtf16Units) {
    // Each key with its object in the file, ordered by UTF-16 units: a surrogate is below U+FF21.
    const std::vector<std::pair<std::string, std::string>> keys = {
        {"a", "Qa"},
        {"a\xC3\xA9", "b\0a\0\xE9"s},
        {"a\xC3\xA9z", "c\0a\0\xE9\0z"s},
        {"b", "Qb"},
        {"\xC3\xA9", "a\0\xE9"s},
        {"\xE1\xB8\x80", "a\x1E\0"s},
        {"\xF0\x9F\x98\x80", "b\xD8\x3D\xDE\0"s},
        {"\xEF\xBC\xA1", "a\xFF\x21"},
    };
    std::string xml;
    for (const auto& [key, bytes] : keys) {
        xml.insert(0, "<key>" + key + "</key><true/>");
    }
    const std::string file = written(read_list("<dict>" + xml + "</dict>").get());
    std::size_t at = 8;
    for (const auto& [key, bytes] : keys) {
        const std::size_t next = file.find(bytes, at);
        ASSERT_NE(next, std::string::npos) << key;
        at = next;
    }
}

TEST(PropertyListDifferences, OnlyTheBinaryFormatIsWritten) {
    for (const CFPropertyListFormat format :
         {kCFPropertyListOpenStepFormat, kCFPropertyListXMLFormat_v1_0}) {
        EXPECT_EQ(CFPropertyListCreateData(nullptr, kCFBooleanTrue, format, 0, nullptr), nullptr);
    }
}

TEST(CoreFoundationDifferences, OneByteOfUtf16IsAnEmptyString) {
    for (const CFStringEncoding encoding :
         {kCFStringEncodingUTF16, kCFStringEncodingUTF16BE, kCFStringEncodingUTF16LE}) {
        const auto* byte = reinterpret_cast<const UInt8*>("a");
        EXPECT_EQ(
            described(adopt(CFStringCreateWithBytes(nullptr, byte, 1, encoding, false)).get()),
            "\"\"");
    }
}

TEST(CoreFoundationDifferences, AStrayCopyrightSignIsNoText) {
    EXPECT_EQ(CFStringCreateWithCString(nullptr, "x\xA9y", kCFStringEncodingUTF8), nullptr);
    const auto* bytes = reinterpret_cast<const UInt8*>("x\xA9y");
    EXPECT_EQ(CFStringCreateWithBytes(nullptr, bytes, 3, kCFStringEncodingUTF8, false), nullptr);
}

TEST(CoreFoundationDifferences, ANanKeepsItsPayload) {
    const std::string file =
        BinaryList{.objects = {"\x23\x7F\xF8" + big_endian(0x123, 6)}, .offset_width = 1}.bytes();
    EXPECT_EQ(written(read_list(file).get()), file);
}

TEST(CoreFoundationDifferences, AWideNumberBeyond8BitsDoesNotFitThem) {
    const auto converts = [](const char* decimal, int expected) {
        const auto number = make_number({{"t", "int"}, {"w", 128}, {"v", decimal}});
        SInt8 value = 0;
        const bool fits = CFNumberGetValue(number.get(), kCFNumberSInt8Type, &value) != 0;
        EXPECT_EQ(value, expected) << decimal;
        return fits;
    };
    EXPECT_FALSE(converts("511", -1));
    EXPECT_FALSE(converts("256", 0));
    EXPECT_TRUE(converts("5", 5));
}

TEST(CoreFoundationDifferences, UidsAreEqualByValue) {
    const std::string seven = "<dict><key>CF$UID</key><integer>7</integer></dict>";
    const std::string eight = "<dict><key>CF$UID</key><integer>8</integer></dict>";
    EXPECT_TRUE(CFEqual(read_list(seven).get(), read_list(seven).get()));
    EXPECT_FALSE(CFEqual(read_list(seven).get(), read_list(eight).get()));
}

TEST(CoreFoundationDifferences, ARelativePathThatIsNotUtf8ComesBack) {
    const auto* path = reinterpret_cast<const UInt8*>("caf\xE9");
    const auto url = adopt(CFURLCreateFromFileSystemRepresentation(nullptr, path, 4, false));
    EXPECT_EQ(path_of(url.get()), "caf\xE9");
}

TEST(CoreFoundationDifferences, OnlyASlashAtTheEndThatIsNotEscapedIsLeftOut) {
    EXPECT_EQ(path_of(url_of("file:///%2F/").get()), "//");
}

TEST(CoreFoundationDifferences, APathEndsAtTheFirstOfSeveralFragments) {
    EXPECT_EQ(path_of(url_of("file:///a#b#c").get()), "/a");
}

TEST(CoreFoundationDifferences, ABracketMayStandInAPath) {
    EXPECT_EQ(path_of(url_of("file:///a[b").get()), "/a[b");
}

TEST(CoreFoundationDeathTest, ArraysEndAtTheirCount) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto array = array_of({});
    EXPECT_DEATH(CFArrayGetValueAtIndex(static_cast<CFArrayRef>(array.get()), 0), "");
}

TEST(CoreFoundationDeathTest, ContainersContainObjectsOnly) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(CFArrayCreate(nullptr, nullptr, 0, nullptr), "");
    EXPECT_DEATH(CFDictionaryCreateMutable(nullptr, 0, nullptr, &kCFTypeDictionaryValueCallBacks),
                 "");
    EXPECT_DEATH(CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, nullptr),
                 "");
}

} // namespace lumo::test
