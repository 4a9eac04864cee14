// The notations for bytes in the records.
#include "vectors/vectors.h"

#include <gtest/gtest.h>

namespace lumo::test {
namespace {

using namespace std::string_literals;

std::string bytes_of(const char* notation) {
    return vector_bytes(Json::parse(notation));
}

TEST(Vectors, TextIsUtf8) {
    EXPECT_EQ(bytes_of(R"({"text":"a\n\u00e9"})"), "a\n\xC3\xA9");
}

TEST(Vectors, MayOmitTheOuterTags) {
    const std::string bytes = bytes_of(R"({"in_plist":"<true/>"})");
    EXPECT_TRUE(bytes.starts_with("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE"));
    EXPECT_TRUE(bytes.ends_with("<plist version=\"1.0\">\n<true/>\n</plist>\n"));
}

TEST(Vectors, MayBeInBase64) {
    EXPECT_EQ(bytes_of(R"({"base64":""})"), "");
    EXPECT_EQ(bytes_of(R"({"base64":"AA=="})"), "\0"s);
    EXPECT_EQ(bytes_of(R"({"base64":"+/8="})"), "\xFB\xFF");
    EXPECT_EQ(bytes_of(R"({"base64":"QUJDRA=="})"), "ABCD");
}

TEST(Vectors, RulesRepeatAndCount) {
    EXPECT_EQ(bytes_of(R"({"rule":[{"text":"<a>","times":2},{"hex":"ff00"},{"text":"z"}]})"),
              "<a><a>\xFF\0z"s);
    EXPECT_EQ(bytes_of(R"({"rule":[{"hex":"11","from":254,"step":1,"width":2,"times":3}]})"),
              "\x11\x00\xFE\x11\x00\xFF\x11\x01\x00"s);
    EXPECT_EQ(bytes_of(R"({"rule":[{"from":8,"step":3,"width":1,"times":3}]})"), "\x08\x0B\x0E");
}

TEST(Vectors, WithoutAFileThrow) {
    EXPECT_THROW(read_vectors("none.json"), std::runtime_error);
}

} // namespace
} // namespace lumo::test
