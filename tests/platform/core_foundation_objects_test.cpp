// Objects of CoreFoundation's types, created as the readers of property lists create them.
#include "core_foundation/objects.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace lumo::platform {
namespace {

std::vector<Owned> keys_and_values(std::initializer_list<std::pair<const char*, int>> entries) {
    std::vector<Owned> row;
    for (const auto& [key, value] : entries) {
        row.push_back(make_string(key));
        row.push_back(make_integer(value));
    }
    return row;
}

const Dictionary& dictionary(const Owned& object) {
    return as<Dictionary>(object.get());
}

std::int64_t value_of(const Owned& object, const char* key) {
    const Entry* entry = find(dictionary(object), make_string(key).get());
    return entry == nullptr ? -1000 : as<Number>(entry->value).integer;
}

Owned many_entries(int count) {
    std::vector<Owned> row;
    for (int i = 0; i < count; ++i) {
        row.push_back(make_string("key " + std::to_string(i)));
        row.push_back(make_integer(i));
    }
    return make_dictionary(row, Duplicates::first_wins);
}

TEST(Strings, OfPlainTextAreStoredAsBytes) {
    const Owned string = make_string("Grand Piano");
    EXPECT_TRUE(as<String>(string.get()).is_ascii());
    EXPECT_EQ(as<String>(string.get()).ascii(), "Grand Piano");
}

TEST(Strings, WithOtherCharactersAreStoredAsUtf16) {
    const Owned string = make_string("\xC3\xA9\xF0\x9F\x98\x80");
    EXPECT_FALSE(as<String>(string.get()).is_ascii());
    EXPECT_EQ(as<String>(string.get()).utf16(), u"\u00E9\U0001F600");
}

TEST(Strings, AreEqualHoweverTheyWereMade) {
    const Owned plain = make_string("abc");
    EXPECT_TRUE(equal(plain.get(), make_string_utf16(u"abc").get()));
    EXPECT_TRUE(equal(plain.get(), make_string_latin1("abc").get()));
    EXPECT_EQ(hash(plain.get()), hash(make_string_utf16(u"abc").get()));
}

TEST(Strings, AndDataAreComparedAlikeWhetherOrNotTheirHashesAreKnown) {
    const std::uint8_t bytes[] = {'a', 'b', 'c'};
    const Owned string = make_string("abc");
    const Owned data = make_data(bytes);
    for (int i = 0; i < 2; ++i) { // in the second pass all hashes are cached
        const Owned other = make_string("abd");
        const Owned part = make_data({bytes, 2});
        if (i == 1) {
            for (const Owned* object : {&string, &data, &other, &part}) {
                hash(object->get());
            }
        }
        const Owned same = make_string("abc");
        const Owned same_bytes = make_data(bytes);
        EXPECT_TRUE(equal(string.get(), same.get()));
        EXPECT_TRUE(equal(data.get(), same_bytes.get()));
        EXPECT_EQ(hash(string.get()), hash(same.get()));
        EXPECT_EQ(hash(data.get()), hash(same_bytes.get()));
        EXPECT_TRUE(equal(string.get(), same.get()));
        EXPECT_TRUE(equal(data.get(), same_bytes.get()));
        EXPECT_FALSE(equal(string.get(), other.get()));
        EXPECT_FALSE(equal(data.get(), part.get()));
    }
}

TEST(Strings, OfInvalidUtf8AreNotMade) {
    for (const char* text : {"\x80", "\xC0\x80", "\xC3", "\xE0\x9F\xBF", "\xED\xA0\x80",
                             "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "a\xFF"}) {
        EXPECT_EQ(make_string(text), nullptr) << testing::PrintToString(text);
    }
}

TEST(Strings, KeepZerosAndLoneSurrogates) {
    const Owned zero = make_string({"a\0b", 3});
    EXPECT_EQ(as<String>(zero.get()).length, 3U);
    const char16_t lone[] = {u'a', 0xD83D, u'b'};
    EXPECT_EQ(as<String>(make_string_utf16({lone, 3}).get()).utf16(),
              (std::u16string_view{lone, 3}));
}

TEST(Numbers, RememberTheirPrecision) {
    const Owned single = make_real32(0.1F);
    EXPECT_EQ(as<Number>(single.get()).number_kind(), NumberKind::real32);
    EXPECT_FALSE(equal(single.get(), make_real(0.1).get()));
    EXPECT_TRUE(equal(single.get(), make_real(static_cast<double>(0.1F)).get()));
}

TEST(Numbers, OfBothWidthsAreEqualByValue) {
    const Owned wide = make_integer_128(-1, static_cast<std::uint64_t>(-5));
    EXPECT_TRUE(equal(wide.get(), make_integer(-5).get()));
    EXPECT_EQ(hash(wide.get()), hash(make_integer(-5).get()));
    EXPECT_FALSE(equal(make_integer_128(0, static_cast<std::uint64_t>(-5)).get(), wide.get()));
}

TEST(Numbers, OfEqualValueButOtherKindHashAlike) {
    for (const std::int64_t value : {std::int64_t{0}, std::int64_t{-7}, std::int64_t{1} << 52}) {
        EXPECT_EQ(hash(make_integer(value).get()),
                  hash(make_real(static_cast<double>(value)).get()));
    }
}

TEST(Values, AreEqualByValueWithinTheirKind) {
    const std::uint8_t bytes[] = {1, 2, 3};
    EXPECT_TRUE(equal(make_data(bytes).get(), make_data(bytes).get()));
    EXPECT_FALSE(equal(make_data(bytes).get(), make_data({bytes, 2}).get()));
    EXPECT_TRUE(equal(make_data({}).get(), make_data({}).get()));
    EXPECT_TRUE(equal(make_date(0.0).get(), make_date(-0.0).get()));
    EXPECT_EQ(hash(make_date(0.0).get()), hash(make_date(-0.0).get()));
    EXPECT_TRUE(equal(make_uid(7).get(), make_uid(7).get()));
    EXPECT_FALSE(equal(make_uid(7).get(), make_integer(7).get()));
    EXPECT_TRUE(equal(make_null().get(), make_null().get()));
    EXPECT_FALSE(equal(make_boolean(true).get(), make_boolean(false).get()));
}

TEST(Dictionaries, KeepTheOrderOfInsertion) {
    for (const int count : {3, 8, 9, 1000}) {
        const Owned object = many_entries(count);
        ASSERT_EQ(dictionary(object).count, static_cast<std::size_t>(count));
        int expected = 0;
        for (const Entry& entry : dictionary(object).items()) {
            EXPECT_EQ(as<Number>(entry.value).integer, expected++);
        }
    }
}

TEST(Dictionaries, FindEveryKeyWhateverTheirNumber) {
    for (const int count : {1, 8, 9, 1000}) {
        const Owned object = many_entries(count);
        for (int i = 0; i < count; ++i) {
            EXPECT_EQ(value_of(object, ("key " + std::to_string(i)).c_str()), i);
        }
        EXPECT_EQ(value_of(object, "absent"), -1000);
    }
}

TEST(Dictionaries, LetTheFirstOrTheLastOfEqualKeysWin) {
    auto first = keys_and_values({{"a", 1}, {"b", 2}, {"a", 3}});
    const Owned first_wins = make_dictionary(first, Duplicates::first_wins);
    EXPECT_EQ(dictionary(first_wins).count, 2U);
    EXPECT_EQ(value_of(first_wins, "a"), 1);
    auto last = keys_and_values({{"a", 1}, {"b", 2}, {"a", 3}});
    const Owned last_wins = make_dictionary(last, Duplicates::last_wins);
    EXPECT_EQ(dictionary(last_wins).count, 2U);
    EXPECT_EQ(value_of(last_wins, "a"), 3);
}

/// The keys and values of `row`, with `offset` added to each value.
std::vector<Owned> same_keys(const Dictionary& row, std::int64_t offset) {
    std::vector<Owned> entries;
    for (const Entry& entry : row.items()) {
        entries.push_back(share(entry.key));
        entries.push_back(make_integer(as<Number>(entry.value).integer + offset));
    }
    return entries;
}

TEST(Dictionaries, WithTheKeysOfASimilarOneFindTheirOwnValues) {
    for (const int count : {1, 8, 9, 1000}) {
        const Owned model = many_entries(count);
        auto entries = same_keys(dictionary(model), 5000);
        const Owned object = make_dictionary(entries, Duplicates::last_wins, &dictionary(model));
        for (int i = 0; i < count; ++i) {
            EXPECT_EQ(value_of(object, ("key " + std::to_string(i)).c_str()), i + 5000);
        }
        EXPECT_EQ(value_of(object, "absent"), -1000);
    }
}

TEST(Dictionaries, WithOtherKeysThanASimilarOneAreMadeAsEver) {
    auto row = keys_and_values({{"a", 1}, {"b", 2}});
    const Owned model = make_dictionary(row, Duplicates::first_wins);
    auto twice = same_keys(dictionary(model), 0);
    twice[2] = share(twice[0].get());
    const Owned object = make_dictionary(twice, Duplicates::last_wins, &dictionary(model));
    EXPECT_EQ(dictionary(object).count, 1U);
    EXPECT_EQ(value_of(object, "a"), 2);
    auto again = same_keys(dictionary(model), 0);
    EXPECT_EQ(dictionary(make_dictionary(again, Duplicates::last_wins, &dictionary(object))).count,
              2U);
}

TEST(Dictionaries, AreEqualInAnyOrder) {
    auto one = keys_and_values({{"a", 1}, {"b", 2}});
    auto two = keys_and_values({{"b", 2}, {"a", 1}});
    auto other = keys_and_values({{"b", 2}, {"a", 2}});
    const Owned first = make_dictionary(one, Duplicates::first_wins);
    EXPECT_TRUE(equal(first.get(), make_dictionary(two, Duplicates::first_wins).get()));
    EXPECT_FALSE(equal(first.get(), make_dictionary(other, Duplicates::first_wins).get()));
}

TEST(Sets, HoldEqualValuesOnce) {
    std::vector<Owned> items;
    items.push_back(make_integer(5));
    items.push_back(make_real(5.0));
    items.push_back(make_string("5"));
    const Owned set = make_set(items);
    EXPECT_EQ(dictionary(set).count, 2U);
}

TEST(Sets, DistinguishContainersByTheirAddresses) {
    std::vector<Owned> items;
    items.push_back(make_array({}));
    items.push_back(share(items[0].get()));
    items.push_back(make_array({}));
    const Owned set = make_set(items);
    EXPECT_EQ(dictionary(set).count, 2U);
}

TEST(References, HandedToAContainerAreItsOwn) {
    Owned child = make_string("shared");
    const Owned second = share(child.get());
    std::vector<Owned> items;
    items.push_back(std::move(child));
    {
        const Owned array = make_array(items);
        EXPECT_EQ(items[0], nullptr);
        EXPECT_EQ(second->references.load(), 2U);
    }
    EXPECT_EQ(second->references.load(), 1U);
}

TEST(References, AreCountedByManyThreadsAtOnce) {
    const Owned object = make_string("shared");
    constexpr int count = 4;
    std::vector<std::thread> threads;
    threads.reserve(count);
    for (int i = 0; i < count; ++i) {
        threads.emplace_back([&object] {
            for (int j = 0; j < 10000; ++j) {
                share(object.get()).reset();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(object->references.load(), 1U);
}

Owned nested_arrays(int depth) {
    Owned object = make_integer(1 << 20);
    for (int i = 0; i < depth; ++i) {
        std::vector<Owned> items;
        items.push_back(std::move(object));
        object = make_array(items);
    }
    return object;
}

/// Arrays, dictionaries and sets in turn, each inside the one before, `depth` levels deep.
Owned nested_in_turns(int depth) {
    Owned object = make_integer(1 << 20);
    for (int i = 0; i < depth; ++i) {
        std::vector<Owned> items;
        if (i % 3 == 0) {
            items.push_back(make_string("key"));
        }
        items.push_back(std::move(object));
        object = i % 3 == 0   ? make_dictionary(items, Duplicates::first_wins)
                 : i % 3 == 1 ? make_set(items)
                              : make_array(items);
    }
    return object;
}

TEST(DictionaryDeathTest, ChangingAnImmutableOneStopsTheProcess) {
    const Owned object = many_entries(1);
    auto* const dictionary =
        const_cast<CFMutableDictionaryRef>(reinterpret_cast<CFDictionaryRef>(object.get()));
    EXPECT_DEATH(CFDictionarySetValue(dictionary, object.get(), object.get()), "");
}

TEST(References, OfDeepStructuresAreGivenUpWithoutRecursion) {
    const Owned leaf = make_string("leaf");
    Owned object = nested_arrays(1000000);
    object = nested_in_turns(1000000);
    std::vector<Owned> items;
    items.push_back(share(leaf.get()));
    items.push_back(std::move(object));
    object = make_array(items);
    object.reset();
    EXPECT_EQ(leaf->references.load(), 1U);
}

TEST(Equality, OfDeepStructuresNeedsNoRecursion) {
    const Owned a = nested_arrays(300000);
    EXPECT_TRUE(equal(a.get(), nested_arrays(300000).get()));
    EXPECT_FALSE(equal(a.get(), nested_arrays(299999).get()));
}

} // namespace
} // namespace lumo::platform
