// Writing binary property lists. Uses public headers only.
#include "platform/binary_list_builder.h"
#include "platform/property_list_text.h"

#include <cstddef>
#include <string>

namespace lumo::test {
namespace {

using namespace std::string_literals;

/// The description of an XML property list after it was written in binary form and read back.
std::string read_back(const std::string& xml) {
    return read_with_format(written(read_list(xml).get()));
}

Ref<CFNumberRef> real_number(double value) {
    return adopt(CFNumberCreate(nullptr, kCFNumberDoubleType, &value));
}

} // namespace

TEST(PropertyListWriting, ReadsBackEqual) {
    const std::string xml =
        "<dict><key>k</key><array><integer>-5</integer><integer>70000</integer><real>2.5</real>"
        "<true/><false/><data>AAEC</data><date>2001-01-02T00:00:00Z</date>"
        "<string>\xC3\xA9</string><string/><dict/></array>"
        "<key>wide</key><integer>18446744073709551615</integer>"
        "<key>uid</key><dict><key>CF$UID</key><integer>300</integer></dict></dict>";
    EXPECT_EQ(read_back(xml), "binary " + read_and_describe(xml));
}

TEST(PropertyListWriting, ValuesOfDifferentKindsStayTwo) {
    EXPECT_EQ(read_back("<array><integer>5</integer><real>5</real><real>0.0</real><real>-0.0</real>"
                        "<string>5</string><data>NQ==</data></array>"),
              "binary [5, real 5, real 0, real -0, \"5\", <35>]");
}

TEST(PropertyListWriting, SinglePrecisionStaysApart) {
    const float single = 1.5F;
    const auto narrow = adopt(CFNumberCreate(nullptr, kCFNumberFloat32Type, &single));
    const auto list = array_of({narrow.get(), real_number(1.5).get()});
    EXPECT_EQ(read_and_describe(written(list.get())), "[real32 1.5, real 1.5]");
}

TEST(PropertyListWriting, NumbersTakeTheFewestBytes) {
    const auto bytes_of = [](const std::string& number) {
        const std::string file = written(read_list("<integer>" + number + "</integer>").get());
        return to_hex(file.substr(8, file.size() - 8 - 33));
    };
    EXPECT_EQ(bytes_of("255"), "10ff");
    EXPECT_EQ(bytes_of("256"), "110100");
    EXPECT_EQ(bytes_of("65536"), "1200010000");
    EXPECT_EQ(bytes_of("4294967296"), "130000000100000000");
    EXPECT_EQ(bytes_of("-1"), "13ffffffffffffffff");
    EXPECT_EQ(bytes_of("9223372036854775808"), "1400000000000000008000000000000000");
}

TEST(PropertyListWriting, CountsFrom15OnFollowTheMarker) {
    const auto start_of = [](std::size_t size) {
        const std::string text(size, 'x');
        return to_hex(written(read_list("<string>" + text + "</string>").get()).substr(8, 4));
    };
    EXPECT_EQ(start_of(14), "5e787878");
    EXPECT_EQ(start_of(15), "5f100f78");
    EXPECT_EQ(start_of(256), "5f110100");
}

TEST(PropertyListWriting, LoneSurrogatesSurvive) {
    const auto list = read_list(BinaryList{.objects = {"\x62\xDC\x00\x00\x41"s}}.bytes());
    EXPECT_EQ(read_and_describe(written(list.get())), "\"\\dc00A\"");
}

TEST(PropertyListWriting, WidthsGrowWithTheCounts) {
    std::string xml = "<array>";
    for (int i = 0; i < 70000; ++i) {
        xml += "<integer>" + std::to_string(1000 + i) + "</integer>";
    }
    const auto list = read_list(xml + "</array>");
    EXPECT_EQ(read_and_describe(written(list.get())), described(list.get()));
}

TEST(PropertyListWriting, RefusesWhatIsNoPropertyList) {
    EXPECT_EQ(written(kCFNull), not_written);
    EXPECT_EQ(
        CFPropertyListCreateData(nullptr, kCFNull, kCFPropertyListBinaryFormat_v1_0, 0, nullptr),
        nullptr);
    EXPECT_EQ(written(array_of({kCFNull}).get()), not_written);
    const auto* path = reinterpret_cast<const UInt8*>("/tmp");
    const auto url = adopt(CFURLCreateFromFileSystemRepresentation(nullptr, path, 4, false));
    EXPECT_EQ(written(array_of({url.get()}).get()), not_written);
    EXPECT_EQ(written(read_list(BinaryList{.objects = {"\xC0"}}.bytes()).get()), not_written);
    EXPECT_EQ(written(read_list(BinaryList{.objects = {"\xD1\x01\x01", "\x10\x05"}}.bytes()).get()),
              not_written);
}

TEST(PropertyListWriting, ContainersThatContainThemselvesAreNotWritten) {
    const auto key = adopt(CFStringCreateWithCString(nullptr, "key", kCFStringEncodingUTF8));
    const auto list = adopt(CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks,
                                                      &kCFTypeDictionaryValueCallBacks));
    CFDictionarySetValue(list.get(), key.get(), list.get());
    EXPECT_EQ(written(list.get()), not_written);
    CFDictionarySetValue(list.get(), key.get(), array_of({list.get()}).get());
    EXPECT_EQ(written(list.get()), not_written);
    CFDictionarySetValue(list.get(), key.get(), array_of({}).get());
    EXPECT_NE(written(list.get()), not_written);
}

} // namespace lumo::test
