// Arrays and dictionaries through CoreFoundation's functions: contents, ownership, refused
// arguments.
#include "base/ref.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using lumo::adopt;
using lumo::Ref;
using lumo::retain;

Ref<CFStringRef> text(const std::string& utf8) {
    return adopt(CFStringCreateWithCString(nullptr, utf8.c_str(), kCFStringEncodingUTF8));
}

Ref<CFNumberRef> number(int value) {
    return adopt(CFNumberCreate(nullptr, kCFNumberIntType, &value));
}

Ref<CFMutableDictionaryRef> dictionary() {
    return adopt(CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks,
                                           &kCFTypeDictionaryValueCallBacks));
}

int value_of(CFDictionaryRef dictionary, const std::string& key) {
    int value = -1;
    const void* found = CFDictionaryGetValue(dictionary, text(key).get());
    if (found != nullptr) {
        CFNumberGetValue(static_cast<CFNumberRef>(found), kCFNumberIntType, &value);
    }
    return value;
}

Ref<CFMutableDictionaryRef> numbered(int count) {
    auto result = dictionary();
    for (int i = 0; i < count; ++i) {
        CFDictionarySetValue(result.get(), text("key " + std::to_string(i)).get(), number(i).get());
    }
    return result;
}

TEST(Dictionaries, HoldWhatWasSet) {
    for (const int count : {1, 8, 9, 100, 5000}) {
        const auto entries = numbered(count);
        EXPECT_EQ(CFDictionaryGetCount(entries.get()), count);
        for (int i = 0; i < count; ++i) {
            EXPECT_EQ(value_of(entries.get(), "key " + std::to_string(i)), i);
        }
        EXPECT_EQ(value_of(entries.get(), "key"), -1);
    }
}

TEST(Dictionaries, KeepTheirKeysAndValuesAlive) {
    auto entries = dictionary();
    {
        const auto key = text("a key that is only held by the dictionary");
        const auto value = text("and so is the value");
        CFDictionarySetValue(entries.get(), key.get(), value.get());
    }
    const void* key = nullptr;
    const void* value = nullptr;
    CFDictionaryGetKeysAndValues(entries.get(), &key, &value);
    EXPECT_TRUE(CFEqual(key, text("a key that is only held by the dictionary").get()));
    EXPECT_TRUE(CFEqual(value, text("and so is the value").get()));
}

TEST(Dictionaries, SetReplacesKeyAndValue) {
    auto entries = dictionary();
    const auto first = text("key");
    const auto second = text("key");
    CFDictionarySetValue(entries.get(), first.get(), number(1).get());
    CFDictionarySetValue(entries.get(), second.get(), number(2).get());
    const void* key = nullptr;
    CFDictionaryGetKeysAndValues(entries.get(), &key, nullptr);
    EXPECT_EQ(CFDictionaryGetCount(entries.get()), 1);
    EXPECT_EQ(key, second.get());
    EXPECT_EQ(value_of(entries.get(), "key"), 2);
}

TEST(Dictionaries, SetMayReplaceAnEntryByItself) {
    auto entries = numbered(1);
    const void* key = nullptr;
    const void* value = nullptr;
    CFDictionaryGetKeysAndValues(entries.get(), &key, &value);
    CFDictionarySetValue(entries.get(), key, value);
    EXPECT_EQ(value_of(entries.get(), "key 0"), 0);
}

TEST(Dictionaries, CreatedWithEqualKeysKeepTheFirst) {
    const auto a = text("key");
    const auto b = text("key");
    const auto one = number(1);
    const auto two = number(2);
    const void* keys[] = {a.get(), b.get()};
    const void* values[] = {one.get(), two.get()};
    const auto created =
        adopt(CFDictionaryCreate(nullptr, keys, values, 2, &kCFTypeDictionaryKeyCallBacks,
                                 &kCFTypeDictionaryValueCallBacks));
    EXPECT_EQ(CFDictionaryGetCount(created.get()), 1);
    EXPECT_EQ(value_of(created.get(), "key"), 1);
}

TEST(Dictionaries, TakeAnIntegerAndTheRealOfItsValueForOneKey) {
    auto entries = dictionary();
    const double real = 5.0;
    CFDictionarySetValue(entries.get(), number(5).get(), text("integer").get());
    CFDictionarySetValue(entries.get(),
                         adopt(CFNumberCreate(nullptr, kCFNumberDoubleType, &real)).get(),
                         text("real").get());
    EXPECT_EQ(CFDictionaryGetCount(entries.get()), 1);
    EXPECT_TRUE(CFEqual(CFDictionaryGetValue(entries.get(), number(5).get()), text("real").get()));
}

TEST(Dictionaries, CopiedAreIndependentButShareTheirValues) {
    const auto original = numbered(20);
    const auto copy = adopt(CFDictionaryCreateMutableCopy(nullptr, 0, original.get()));
    EXPECT_TRUE(CFEqual(original.get(), copy.get()));
    const auto key = text("key 7");
    EXPECT_EQ(CFDictionaryGetValue(original.get(), key.get()),
              CFDictionaryGetValue(copy.get(), key.get()));
    CFDictionarySetValue(copy.get(), key.get(), number(70).get());
    EXPECT_EQ(value_of(original.get(), "key 7"), 7);
    EXPECT_EQ(value_of(copy.get(), "key 7"), 70);
}

TEST(Dictionaries, OutliveTheOneTheyWereCopiedFrom) {
    auto original = numbered(20);
    const auto copy = adopt(CFDictionaryCreateMutableCopy(nullptr, 0, original.get()));
    original = {};
    EXPECT_EQ(value_of(copy.get(), "key 19"), 19);
}

TEST(Dictionaries, AreNotEqualWhenAValueDiffers) {
    const auto one = numbered(20);
    const auto other = numbered(20);
    EXPECT_TRUE(CFEqual(one.get(), other.get()));
    EXPECT_EQ(CFHash(one.get()), CFHash(other.get()));
    CFDictionarySetValue(other.get(), text("key 3").get(), text("3").get());
    EXPECT_FALSE(CFEqual(one.get(), other.get()));
}

TEST(Arrays, HoldTheirValuesInOrder) {
    std::vector<Ref<CFNumberRef>> numbers;
    std::vector<const void*> values;
    for (int i = 0; i < 100; ++i) {
        numbers.push_back(number(1000 + i));
        values.push_back(numbers.back().get());
    }
    const auto array = adopt(CFArrayCreate(nullptr, values.data(), 100, &kCFTypeArrayCallBacks));
    numbers.clear();
    EXPECT_EQ(CFArrayGetCount(array.get()), 100);
    for (int i = 0; i < 100; ++i) {
        EXPECT_TRUE(CFEqual(CFArrayGetValueAtIndex(array.get(), i), number(1000 + i).get()));
    }
}

TEST(Arrays, AreEqualWhenTheirValuesAre) {
    const auto a = text("a");
    const auto b = text("b");
    const void* values[] = {a.get(), b.get()};
    const auto array = adopt(CFArrayCreate(nullptr, values, 2, &kCFTypeArrayCallBacks));
    const auto other_a = text("a");
    const auto other_b = text("b");
    const void* equal_values[] = {other_a.get(), other_b.get()};
    EXPECT_TRUE(CFEqual(
        array.get(), adopt(CFArrayCreate(nullptr, equal_values, 2, &kCFTypeArrayCallBacks)).get()));
    EXPECT_FALSE(CFEqual(
        array.get(), adopt(CFArrayCreate(nullptr, equal_values, 1, &kCFTypeArrayCallBacks)).get()));
    std::swap(equal_values[0], equal_values[1]);
    EXPECT_FALSE(CFEqual(
        array.get(), adopt(CFArrayCreate(nullptr, equal_values, 2, &kCFTypeArrayCallBacks)).get()));
}

TEST(Objects, OfDifferentTypesAreNeverEqual) {
    EXPECT_FALSE(CFEqual(number(1).get(), kCFBooleanTrue));
    EXPECT_FALSE(CFEqual(text("1").get(), number(1).get()));
    EXPECT_FALSE(CFEqual(kCFNull, kCFBooleanFalse));
    EXPECT_NE(CFGetTypeID(kCFBooleanTrue), CFNumberGetTypeID());
}

TEST(Objects, MayBeRetainedAndReadFromManyThreads) {
    const auto shared = numbered(30);
    std::vector<int> sums(4);
    std::vector<std::thread> threads;
    threads.reserve(sums.size());
    for (int& sum : sums) {
        threads.emplace_back([&shared, &sum] {
            for (int i = 0; i < 2000; ++i) {
                const auto own = retain(static_cast<CFDictionaryRef>(shared.get()));
                sum += value_of(own.get(), "key 29");
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(sums, std::vector<int>(4, 2000 * 29));
}

TEST(Data, CreatedWithoutACopyRefersToTheCallersBytes) {
    const UInt8 bytes[] = {1, 2, 3};
    const auto data = adopt(CFDataCreateWithBytesNoCopy(nullptr, bytes, 3, kCFAllocatorNull));
    EXPECT_EQ(CFDataGetBytePtr(data.get()), bytes);
    EXPECT_TRUE(CFEqual(data.get(), adopt(CFDataCreate(nullptr, bytes, 3)).get()));
}

TEST(ObjectsDeathTest, ThatAreNullCannotBeRetainedOrReleased) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(CFRelease(nullptr), "");
    EXPECT_DEATH(CFRetain(nullptr), "");
}

} // namespace
