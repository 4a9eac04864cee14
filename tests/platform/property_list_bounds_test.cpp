// Guarantees of the project's own CoreFoundation that Apple's does not give: sharing of values
// never makes the size or the time of a file grow without bound, and no depth ends the process.
// These tests are not built with another CoreFoundation.
#include "platform/binary_list_builder.h"
#include "platform/property_list_text.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace lumo::test {
namespace {

std::string repeated(const std::string& part, std::size_t times) {
    std::string whole;
    for (std::size_t i = 0; i < times; ++i) {
        whole += part;
    }
    return whole;
}

/// The first key of the dictionary at `index` of an array.
CFTypeRef key_in(CFPropertyListRef array, CFIndex index) {
    const void* key = nullptr;
    const void* dictionary = CFArrayGetValueAtIndex(static_cast<CFArrayRef>(array), index);
    CFDictionaryGetKeysAndValues(static_cast<CFDictionaryRef>(dictionary), &key, nullptr);
    return key;
}

/// An array of `count` arrays of 40,000 references each, all of which share the bytes of their last
/// references.
BinaryList overlapping_arrays(std::size_t count) {
    const std::string head = "\xAF\x11\x9C\x40"; // as references: 44817 and 40000, which are leaves
    BinaryList list{.objects = {}, .offset_width = 4, .ref_width = 2};
    list.objects.push_back("\xAF\x11" + big_endian(count, 2));
    for (std::size_t i = 1; i <= count; ++i) {
        list.objects[0] += big_endian(i, 2);
        list.objects.push_back(head);
    }
    list.objects.back() += repeated(big_endian(44999, 2), 40000);
    list.objects.resize(45000, "\x09");
    return list;
}

/// `levels` arrays, each of which contains the next one twice.
BinaryList doubling(std::size_t levels) {
    BinaryList list;
    for (std::size_t i = 1; i <= levels; ++i) {
        list.objects.push_back("\xA2" + big_endian(i, 1) + big_endian(i, 1));
    }
    list.objects.push_back("\x09");
    return list;
}

} // namespace

TEST(PropertyListBounds, AnyDepthIsWritten) {
    Ref<CFTypeRef> list = array_of({});
    for (int i = 1; i < 100000; ++i) {
        list = array_of({list.get()});
    }
    const std::string bytes = written(list.get());
    EXPECT_EQ(bytes.substr(8, 4), "\xA1" + big_endian(1, 3));
    EXPECT_EQ(bytes.size(), 8 + 99999 * 4 + 1 + 100000 * 3 + 32);
}

TEST(PropertyListBounds, NumbersOfObjectsAndOffsetsTakeOneToFourBytes) {
    const auto widths = [](const std::string& bytes) {
        return std::pair(bytes.at(bytes.size() - 26), bytes.at(bytes.size() - 25));
    };
    // The table follows one object: a marker, the length, and the bytes.
    const auto offset_width = [&](std::size_t table) {
        const std::size_t length_size = table < 0x10000 ? 4 : 6;
        const std::string content(table - 8 - length_size, 'x');
        const auto data =
            adopt(CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(content.data()),
                               static_cast<CFIndex>(content.size())));
        const std::string bytes = written(data.get());
        EXPECT_TRUE(read_list(bytes)) << table;
        return int{widths(bytes).first};
    };
    EXPECT_EQ(offset_width(0xFFFF), 2);
    EXPECT_EQ(offset_width(0x10006), 3);
    EXPECT_EQ(offset_width(0xFFFFFF), 3);
    EXPECT_EQ(offset_width(0x1000000), 4);
    // An array of different numbers.
    const auto ref_width = [&](std::size_t objects) {
        std::vector<Ref<CFTypeRef>> numbers;
        std::vector<const void*> items;
        for (std::size_t i = 1; i < objects; ++i) {
            const auto value = static_cast<std::int64_t>(i);
            numbers.push_back(
                adopt(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &value)));
            items.push_back(numbers.back().get());
        }
        return int{widths(written(array_of(items).get())).second};
    };
    EXPECT_EQ(ref_width(0xFF), 1);
    EXPECT_EQ(ref_width(0x100), 2);
    EXPECT_EQ(ref_width(0xFFFF), 2);
    EXPECT_EQ(ref_width(0x10000), 3);
}

TEST(PropertyListBounds, SharingIsNotWrittenOut) {
    Ref<CFTypeRef> list = array_of({});
    for (int i = 0; i < 200; ++i) {
        list = array_of({list.get(), list.get()});
    }
    EXPECT_EQ(count_of(written(list.get())), 201u);
}

TEST(PropertyListBounds, SharedPartsCountForTheDepthToo) {
    // Each array contains all deeper ones, the deepest first, so that each has already been read
    // when it is referred to again.
    BinaryList list;
    for (std::size_t i = 0; i < 200; ++i) {
        std::string array = "\xAF\x10" + big_endian(199 - i, 1);
        for (std::size_t j = 199; j > i; --j) {
            array += big_endian(j, 1);
        }
        list.objects.push_back(array);
    }
    read_list(list.bytes());

    list = nested_arrays(600);
    std::string all = "\xAF\x11" + big_endian(600, 2);
    for (std::size_t i = 600; i > 0; --i) {
        all += big_endian(i, 4);
    }
    list.objects.insert(list.objects.begin(), all);
    for (std::size_t i = 1; i < 600; ++i) {
        list.objects[i] = "\xA1" + big_endian(i + 1, 4);
    }
    EXPECT_EQ(read_and_describe(list.bytes()), refused);
}

TEST(PropertyListBounds, EqualKeysOfABinaryFileAreOneObject) {
    const BinaryList file{.objects = {"\xA4\x01\x02\x03\x04", "\xD1\x05\x09", "\xD1\x06\x09",
                                      "\xD1\x07\x09", "\xD1\x08\x09", "\x52kk",
                                      std::string{"\x62\0k\0k", 5}, "\x42kk", "\x42kk", "\x09"}};
    const auto list = read_list(file.bytes());
    ASSERT_EQ(described(list.get()),
              R"([{"kk": true}, {"kk": true}, {<6b6b>: true}, {<6b6b>: true}])");
    EXPECT_EQ(key_in(list.get(), 0), key_in(list.get(), 1));
    EXPECT_EQ(key_in(list.get(), 2), key_in(list.get(), 3));
}

TEST(PropertyListBounds, OverlappingContainersDoNotMultiply) {
    EXPECT_NE(read_and_describe(overlapping_arrays(1).bytes()), refused);
    EXPECT_EQ(read_and_describe(overlapping_arrays(2000).bytes()), refused);
}

TEST(PropertyListBounds, ThereAreNotManyMoreObjectsThanBytes) {
    const auto all_in_one_place = [](std::size_t count) {
        BinaryList list{.objects = {}, .offset_width = 1, .ref_width = 3};
        list.objects.resize(count - 1); // these empty objects start at the offset of the last one
        list.objects.push_back("\x09");
        return read_and_describe(list.bytes());
    };
    EXPECT_EQ(all_in_one_place(65000), "true");
    EXPECT_EQ(all_in_one_place(66000), refused);
}

TEST(PropertyListBounds, SharedContainersAreMadeOnce) {
    const auto list = read_list(doubling(100).bytes());
    const auto* array = static_cast<CFArrayRef>(list.get());
    EXPECT_EQ(CFArrayGetValueAtIndex(array, 0), CFArrayGetValueAtIndex(array, 1));
}

TEST(PropertyListBounds, AnyDepthOfPlistElementsIsRead) {
    const std::string open = repeated("<plist>", 100000);
    EXPECT_EQ(read_and_describe(open + "<true/>" + repeated("</plist>", 100000)), "true");
    EXPECT_EQ(read_and_describe(open), refused);
}

} // namespace lumo::test
