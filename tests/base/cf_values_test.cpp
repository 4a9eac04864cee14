// Strings, values of an expected type, and entries of dictionaries.
#include "base/cf_values.h"
#include "exs/list_values.h"

#include <gtest/gtest.h>

namespace lumo {
namespace {

std::string text_of(const std::string& utf8) {
    return to_string(make_string(utf8).get());
}

TEST(ToString, OfNullIsEmpty) {
    EXPECT_EQ(to_string(nullptr), "");
}

TEST(ToString, OfAnEmptyStringIsEmpty) {
    EXPECT_EQ(text_of(""), "");
}

TEST(ToString, GivesLettersBeyondAsciiAsUtf8) {
    EXPECT_EQ(text_of("Caf\xc3\xa9 \xf0\x9f\x8e\xb9"), "Caf\xc3\xa9 \xf0\x9f\x8e\xb9");
}

TEST(ToString, EndsAtTheFirstNul) {
    EXPECT_EQ(text_of(std::string("kick\0snare", 10)), "kick");
}

TEST(MakeString, OfBytesThatAreNotUtf8IsNothing) {
    EXPECT_FALSE(make_string("Caf\xe9"));
}

TEST(ValueOf, IsTheValueItself) {
    const test::Value number = test::whole(7);
    const test::Value entries = test::dictionary({{"key", number}});
    EXPECT_EQ(value_of(test::as_dictionary(entries), "key"), number.get());
    EXPECT_EQ(value_of<CFNumberRef>(test::as_dictionary(entries), "key"), number.get());
}

TEST(ValueOf, IsNullForAMissingKeyAndAnotherType) {
    const test::Value entries =
        test::dictionary({{"text", test::text("1")}, {"number", test::whole(1)}});
    const CFDictionaryRef dictionary = test::as_dictionary(entries);
    EXPECT_EQ(value_of(dictionary, "absent"), nullptr);
    EXPECT_EQ(value_of<CFStringRef>(dictionary, "absent"), nullptr);
    EXPECT_EQ(value_of<CFNumberRef>(dictionary, "text"), nullptr);
    EXPECT_EQ(value_of<CFBooleanRef>(dictionary, "number"), nullptr);
    EXPECT_EQ(value_of<CFArrayRef>(dictionary, "number"), nullptr);
    EXPECT_EQ(value_of<CFDataRef>(dictionary, "number"), nullptr);
    EXPECT_EQ(value_of<CFDictionaryRef>(dictionary, "number"), nullptr);
    EXPECT_EQ(value_as<CFStringRef>(nullptr), nullptr);
}

} // namespace
} // namespace lumo
