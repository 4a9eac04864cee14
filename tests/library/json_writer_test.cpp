// The JSON of the page.
#include "json_writer.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>

namespace {

using lumo::library::JsonWriter;

TEST(JsonWriter, PutsCommasBetweenValues) {
    JsonWriter json;
    json.begin_object();
    json.key("a");
    json.number(1);
    json.key("b");
    json.list(std::array{2, 3}, [&](int number) {
        json.begin_list();
        json.number(number);
        json.literal("null");
        json.end_list();
    });
    json.new_line();
    json.key("c");
    json.begin_list();
    json.end_list();
    json.end_object();
    EXPECT_EQ(json.json(), "{\"a\":1,\"b\":[[2,null],[3,null]],\n\"c\":[]}");
}

TEST(JsonWriter, WritesTheDisplayedFormOfTexts) {
    JsonWriter json;
    json.text("plain");
    json.text("\"</script>\\");
    json.text("caf\xc3\xa9 \xff\n");
    EXPECT_EQ(json.json(), R"("plain","\"\u003c/script>\\","caf)"
                           "\xc3\xa9"
                           R"( \\xff\\x0a")");
}

TEST(JsonWriter, WritesNumbers) {
    JsonWriter json;
    json.number(std::numeric_limits<std::uint64_t>::max());
    json.number(std::numeric_limits<std::int64_t>::min());
    json.one_decimal(0);
    json.one_decimal(39.25);
    json.one_decimal(1e300);
    EXPECT_EQ(json.json(), "18446744073709551615,-9223372036854775808,0.0,39.3,1e+300");
}

} // namespace
