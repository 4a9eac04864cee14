// Binary property lists, read as in CoreFoundation. Uses public headers only.
#include "platform/binary_list_builder.h"
#include "platform/property_list_text.h"

#include <string>

namespace lumo::test {
namespace {

using namespace std::string_literals;

std::string read_objects(const std::vector<std::string>& objects) {
    return read_and_describe(BinaryList{.objects = objects}.bytes());
}

} // namespace

TEST(PropertyListBinary, ReadsEveryKindOfValue) {
    EXPECT_EQ(read_with_format(BinaryList{
                  .objects = {"\xA9\x01\x02\x03\x04\x05\x06\x07\x08\x0A", "\x08", "\x10\xFF",
                              "\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFE", "\x22\x3F\xC0\x00\x00"s,
                              "\x23\x3F\xF8\x00\x00\x00\x00\x00\x00"s,
                              "\x33\x40\xF5\x18\x00\x00\x00\x00\x00"s, "\x42\x00\xFF"s,
                              "\xD1\x09\x0A", "\x51k", "\x62\xD8\x3D\xDE\x00"s}}
                                   .bytes()),
              "binary [false, 255, -2, real32 1.5, real 1.5, date 86400, <00ff>, "
              "{\"k\": \"\\d83d\\de00\"}, \"\\d83d\\de00\"]");
}

TEST(PropertyListBinary, ReadsNullSetsAndUids) {
    EXPECT_EQ(read_objects({"\xA3\x01\x02\x04", "\x00"s, "\xC2\x03\x03", "\x51x", "\x81\x01\x02"}),
              "[null, set(\"x\"), uid 258]");
}

TEST(PropertyListBinary, OfWideNumbersTheLowHalfCounts) {
    EXPECT_EQ(read_objects({"\x14" + big_endian(1, 8) + big_endian(5, 8)}),
              "0x00000000000000000000000000000005 wide");
    EXPECT_EQ(read_objects({"\x15" + std::string(32, '\0')}), refused);
}

TEST(PropertyListBinary, InfinityIsADoubleWhateverItsWidth) {
    EXPECT_EQ(read_objects({"\x22\x7F\x80\x00\x00"s}), "real inf");
}

TEST(PropertyListBinary, CountsMayFollowInIntegersOfAnyWidth) {
    EXPECT_EQ(read_objects({"\x4F\x15" + big_endian(3, 32) + "xyz"}), "<78797a>");
    EXPECT_EQ(read_objects({"\x4F\x53xyz"}), refused);
    EXPECT_EQ(read_objects({"\x4F\x13" + big_endian(~0ull, 8) + "xyz"}), refused);
}

TEST(PropertyListBinary, CharactersBeyondAsciiAreLatin) {
    EXPECT_EQ(read_objects({"\x52\xC3\xA9"}), "\"\\00c3\\00a9\"");
}

TEST(PropertyListBinary, RefusesAnEmptyUtf16String) {
    EXPECT_EQ(read_objects({"\x60"}), refused);
}

TEST(PropertyListBinary, RefusesObjectsThatReachIntoTheTable) {
    for (const char* object :
         {"\x52x", "\x61x", "\x42x", "\x13xxxxxxx", "\x23xxxxxxx", "\x33xxxxxxx", "\x22xxx",
          "\x81x", "\xA2x", "\xD1x", "\x5F", "\x5F\x11x", "\xAF\x10"}) {
        EXPECT_EQ(read_objects({object}), refused) << static_cast<int>(object[0]);
    }
}

TEST(PropertyListBinary, RefusesAnObjectThatIsNotBeforeTheTable) {
    // One object at 8 and the table at 9. With the value 9 the table's only entry refers to itself,
    // and is the marker of "true" as well.
    std::string file = BinaryList{.objects = {"\x09"}, .offset_width = 1}.bytes();
    ASSERT_EQ(read_and_describe(file), "true");
    for (int offset = 9; offset < 256; ++offset) {
        if (offset == ';') {
            continue; // with it CoreFoundation reads the bytes as OpenStep text
        }
        file[9] = static_cast<char>(offset);
        EXPECT_EQ(read_and_describe(file), refused) << offset;
    }
}

TEST(PropertyListBinary, RefusesUnknownMarkers) {
    for (const char marker : "\x01\x0F\x17\x20\x21\x24\x30\x32\x34\x70\x90\xB0\xE0\xF0"s) {
        EXPECT_EQ(read_objects({marker + std::string(40, '\0')}), refused)
            << static_cast<int>(marker);
    }
}

TEST(PropertyListBinary, TheEarlierOfTwoEqualKeysWins) {
    EXPECT_EQ(read_objects({"\xD2\x01\x02\x03\x04", "\x51k", "\x51k", "\x09", "\x08"}),
              "{\"k\": true}");
}

TEST(PropertyListBinary, KeysMayBeAnythingButContainers) {
    EXPECT_EQ(read_objects({"\xD2\x01\x02\x03\x03", "\x10\x05", "\x08", "\x09"}),
              "{5: true, false: true}");
    EXPECT_EQ(read_objects({"\xD1\x01\x02", "\xA0", "\x09"}), refused);
    EXPECT_EQ(read_objects({"\xA2\x01\x02", "\xA0", "\xD1\x01\x01"}), refused);
}

TEST(PropertyListBinary, RefusesReferencesBeyondTheObjects) {
    EXPECT_EQ(read_objects({"\xA1\x01"}), refused);
    EXPECT_EQ(read_and_describe(BinaryList{.objects = {"\x09"}, .root = 1}.bytes()), refused);
}

TEST(PropertyListBinary, RefusesContainersThatHoldThemselves) {
    EXPECT_EQ(read_objects({"\xA1\x00"s}), refused);
    EXPECT_EQ(read_objects({"\xD1\x01\x02", "\x51k", "\xA1\x00"s}), refused);
}

TEST(PropertyListBinary, AnyWidthThatReachesWillDo) {
    const std::vector<std::string> objects = {"\xA1" + big_endian(1, 9), "\x09"};
    EXPECT_EQ(read_and_describe(
                  BinaryList{.objects = objects, .offset_width = 17, .ref_width = 9}.bytes()),
              "[true]");
    const BinaryList too_many{.objects = std::vector<std::string>(256, "\x09")};
    EXPECT_EQ(read_and_describe(too_many.bytes()), refused);
}

TEST(PropertyListBinary, TheFileMustEndWithTheTrailer) {
    const std::string whole = BinaryList{.objects = {"\xA2\x01\x01", "\x51x"}}.bytes();
    ASSERT_EQ(read_and_describe(whole), "[\"x\", \"x\"]");
    EXPECT_EQ(read_and_describe(whole + '\0'), refused);
    // CoreFoundation reads the first 8 bytes, or fewer of them, as an unquoted OpenStep string.
    for (std::size_t size = 9; size < whole.size(); ++size) {
        ASSERT_EQ(read_and_describe(whole.substr(0, size)), refused) << size;
    }
}

TEST(PropertyListBinary, ReachesAtMost512LevelsBelowTheRoot) {
    EXPECT_NE(read_and_describe(nested_arrays(513).bytes()), refused);
    EXPECT_EQ(read_and_describe(nested_arrays(514).bytes()), refused);
    EXPECT_EQ(read_and_describe(nested_arrays(100000).bytes()), refused);
}

} // namespace lumo::test
