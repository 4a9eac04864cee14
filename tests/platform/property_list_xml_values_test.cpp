// The notations of single values in XML property lists.
#include "property_list/xml_encoding.h"
#include "property_list/xml_values.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

using namespace lumo::platform;
using namespace std::string_literals;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

void expect_integer(std::string_view text, std::uint64_t magnitude, bool negative = false) {
    const auto integer = parse_integer(text);
    ASSERT_TRUE(integer) << text;
    EXPECT_EQ(integer->magnitude, magnitude) << text;
    EXPECT_EQ(integer->negative, negative) << text;
}

std::string decoded(std::string_view text) {
    std::vector<std::uint8_t> bytes;
    return decode_base64(text, bytes) ? std::string(bytes.begin(), bytes.end()) : "refused";
}

std::string utf8(std::string_view bytes) {
    std::string storage;
    const auto text = xml_text(bytes, storage);
    return text ? std::string{*text} : "unknown encoding";
}

} // namespace

TEST(PropertyListInteger, IsDecimalWhateverItsZeros) {
    expect_integer("0", 0);
    expect_integer("010", 10);
    expect_integer("18446744073709551615", 18446744073709551615u);
}

TEST(PropertyListInteger, MayBeHexadecimal) {
    expect_integer("0x1F", 31);
    expect_integer("-0Xff", 255, true);
}

TEST(PropertyListInteger, MayHaveBlanksBeforeAndAfterItsSign) {
    expect_integer(" \n\t+ 5", 5);
    expect_integer("\xE2\x80\x89-\xE3\x80\x80"
                   "5",
                   5, true);
}

TEST(PropertyListInteger, TakesItsBlanksByteByByte) {
    expect_integer("\x7F\x80\xA0"
                   "5",
                   5);
    for (const char* blank : {"\x01", " ", "\xE2\x80\x80", "\xE2\x80\x8B", "\xE3\x80\x80"}) {
        expect_integer(blank + "5"s, 5);
    }
    for (const char* blank : {"!", "\x7E", "\xA1", "\xC2\xA0", "\xEF\xBB\xBF", "\xE2\x80",
                              "\xE2\x80\x7F", "\xE2\x80\x8C", "\xE2\x81\x9F", "\xE3\x80\x81"}) {
        EXPECT_FALSE(parse_integer(blank + "5"s)) << blank;
        EXPECT_FALSE(parse_integer(blank)) << blank;
    }
}

TEST(PropertyListInteger, EndsWithItsLastDigit) {
    for (const char* text : {"", " ", "-", "5 ", "5\n", "1.5", "1e5", "0x", "0x-5", "--5", "5a"}) {
        EXPECT_FALSE(parse_integer(text)) << text;
    }
}

TEST(PropertyListInteger, ReachesFromTheLeast64BitNumberToTheLargestWithoutSign) {
    expect_integer("-9223372036854775808", 9223372036854775808u, true);
    EXPECT_FALSE(parse_integer("-9223372036854775809"));
    EXPECT_FALSE(parse_integer("18446744073709551616"));
}

TEST(PropertyListReal, IsDecimalWithPointAndExponent) {
    EXPECT_EQ(parse_real("1.5"), 1.5);
    EXPECT_EQ(parse_real(" -.5e1"), -5.0);
    EXPECT_EQ(parse_real("+5."), 5.0);
    EXPECT_TRUE(std::signbit(*parse_real("-0.0")));
}

TEST(PropertyListReal, KnowsInfinityAndNanInAnyCase) {
    EXPECT_EQ(parse_real("Infinity"), infinity);
    EXPECT_EQ(parse_real("-INF"), -infinity);
    EXPECT_TRUE(std::isnan(*parse_real("NaN")));
    EXPECT_FALSE(parse_real("-nan"));
}

TEST(PropertyListReal, TakesItsBlanksCharacterByCharacter) {
    for (const char* blank : {"\x01", " ", "\x7F", "\xC2\x80", "\xC2\xA0", "\xE2\x80\x80",
                              "\xE2\x80\x8B", "\xE3\x80\x80", "\xEF\xBB\xBF", "\xEF\xBB\xBF "}) {
        EXPECT_EQ(parse_real(blank + "-2.5"s), -2.5) << blank;
    }
    for (const std::string& blank :
         {"\0"s, "\x80"s, "\xA0"s, "\xC2\xA1"s, "\xE1\x9A\x80"s, "\xE2\x80\x8C"s, "\xE2\x80\xAF"s,
          "\xE2\x81\x9F"s, "\xEF\xBB\xBF\xEF\xBB\xBF"s, " \xEF\xBB\xBF"s}) {
        EXPECT_FALSE(parse_real(blank + "2.5")) << blank;
    }
}

TEST(PropertyListReal, InfinityAndNanHaveNoBlanks) {
    EXPECT_TRUE(std::isnan(*parse_real("\xEF\xBB\xBFnan")));
    for (const char* text : {" inf", " -infinity", " nan", "inf ", "\xC2\xA0inf"}) {
        EXPECT_FALSE(parse_real(text)) << text;
    }
}

TEST(PropertyListReal, BeyondTheRangeIsInfinityOrZero) {
    EXPECT_EQ(parse_real("1e400"), infinity);
    EXPECT_EQ(parse_real("-1e400"), -infinity);
    EXPECT_EQ(parse_real("1e-400"), 0.0);
    EXPECT_EQ(parse_real("0e999999999999"), 0.0);
    EXPECT_EQ(parse_real("0." + std::string(500, '0') + "1"), 0.0);
    EXPECT_EQ(parse_real(std::string(500, '1')), infinity);
    EXPECT_EQ(parse_real("0." + std::string(330, '0') + "1e331"), 1.0);
}

TEST(PropertyListReal, IsTheNearestDouble) {
    EXPECT_EQ(parse_real("0.1"), 0x1.999999999999ap-4);
    EXPECT_EQ(parse_real("9007199254740993"), 9007199254740992.0);
    EXPECT_EQ(parse_real("9007199254740993.0000000000000000000000001"), 9007199254740994.0);
    EXPECT_EQ(parse_real("1.7976931348623158e308"), std::numeric_limits<double>::max());
    EXPECT_EQ(parse_real("1.7976931348623159e308"), infinity);
    EXPECT_EQ(parse_real("2.2250738585072011e-308"), 0x0.fffffffffffffp-1022);
    EXPECT_EQ(parse_real("2.4703282292062328e-324"), std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(parse_real("2.4703282292062327e-324"), 0.0);
}

TEST(PropertyListReal, RefusesOtherNotations) {
    for (const char* text :
         {"", ".", "1.5 ", "1,5", "0x1p3", "1e", "- 1", "+-1", "1.5f", "1.2.3"}) {
        EXPECT_FALSE(parse_real(text)) << text;
    }
}

TEST(PropertyListDate, CountsSecondsFromTheYear2001) {
    EXPECT_EQ(parse_date("2001-01-01T00:00:00Z"), 0.0);
    EXPECT_EQ(parse_date("1970-01-01T00:00:00Z"), -978307200.0);
    EXPECT_EQ(parse_date("2038-01-19T03:14:08Z"), 1169176448.0);
    EXPECT_EQ(parse_date("0000-01-01T00:00:00Z"), -63145526400.0);
    EXPECT_EQ(parse_date("-0044-03-15T00:00:00Z"), -64527667200.0);
}

TEST(PropertyListDate, CarriesFieldsThatAreTooLarge) {
    EXPECT_EQ(parse_date("2001-02-30T00:00:00Z"), parse_date("2001-03-02T00:00:00Z"));
    EXPECT_EQ(parse_date("2001-13-01T00:00:00Z"), parse_date("2002-01-01T00:00:00Z"));
    EXPECT_EQ(parse_date("2001-00-00T00:00:00Z"), -86400.0);
    EXPECT_EQ(parse_date("2001-01-01T99:99:99Z"), 362439.0);
}

TEST(PropertyListDate, RefusesOtherNotations) {
    for (const char* text :
         {"", "2001-01-01", " 2001-01-01T00:00:00Z", "2001-01-01T00:00:00", "2001-01-01t00:00:00Z",
          "+2001-01-01T00:00:00Z", "2001-1-01T000:00:00Z", "99999999999-01-01T00:00:00Z"}) {
        EXPECT_FALSE(parse_date(text)) << text;
    }
}

TEST(PropertyListData, SkipsWhatIsNotBase64) {
    EXPECT_EQ(decoded("\n\tQU JD!"), "ABC");
    EXPECT_EQ(decoded("Q.U_J-D"), "ABC");
}

TEST(PropertyListData, DropsAnIncompleteGroup) {
    EXPECT_EQ(decoded("QUJDQUI"), "ABC");
    EXPECT_EQ(decoded("Q"), "");
}

TEST(PropertyListData, TakesPaddingAnywhere) {
    EXPECT_EQ(decoded("QQ=="), "A");
    EXPECT_EQ(decoded("QUI="), "AB");
    EXPECT_EQ(decoded("QQ==QUJD"), "AABC");
    EXPECT_EQ(decoded("QUJD===="), "ABC\0"s);
}

TEST(PropertyListData, RefusesBytesBeyondAscii) {
    EXPECT_EQ(decoded("QUJD\xC2\xA0"), "refused");
}

TEST(PropertyListEncoding, IsUtf8UnlessTheFileSaysOtherwise) {
    EXPECT_EQ(utf8("<plist>\xC3\xA9"), "<plist>\xC3\xA9");
    EXPECT_EQ(utf8("\xEF\xBB\xBF<plist>"), "<plist>");
}

TEST(PropertyListEncoding, FollowsTheDeclaration) {
    EXPECT_EQ(utf8("<?xml encoding='ISO-8859-1'?>\xE9"), "<?xml encoding='ISO-8859-1'?>\xC3\xA9");
    EXPECT_EQ(utf8("<?xml encoding=\"Windows-1252\"?>\x80"),
              "<?xml encoding=\"Windows-1252\"?>\xE2\x82\xAC");
    EXPECT_EQ(utf8("<?xml encoding=\"macintosh\"?>"), "unknown encoding");
}

TEST(PropertyListEncoding, OfANameOnlyLettersAndDigitsCount) {
    for (const char* name : {"iso8859-1", "windows1252", "cp819", "l1", "us", "ANSI_X3.4-1968",
                             "Latin-1", "ISO_8859-1:1987"}) {
        EXPECT_TRUE(utf8("<?xml encoding='"s + name + "'?>\xE9").ends_with("\xC3\xA9")) << name;
    }
    EXPECT_TRUE(utf8("<?xml encoding='utf-8 '?>\xE9").ends_with(">\xE9"));
    EXPECT_EQ(utf8("<?xml encoding='l2'?>"), "unknown encoding");
    EXPECT_EQ(utf8("<?xml encoding=''?>"), "unknown encoding");
}

TEST(PropertyListEncoding, RefusesBytesThatWindows1252DoesNotDefine) {
    const std::string declaration = "<?xml encoding='windows-1252'?>";
    for (const char* byte : {"\x81", "\x8D", "\x8F", "\x90", "\x9D"}) {
        EXPECT_EQ(utf8(declaration + byte), "unknown encoding");
    }
    EXPECT_EQ(utf8(declaration + "\0\x80\x9F\xA0"s),
              declaration + "\0\xE2\x82\xAC\xC5\xB8\xC2\xA0"s);
}

TEST(PropertyListEncoding, TheDeclarationEndsAtTheFirstQuestionMarkOrBracket) {
    for (const char* text : {"<?xml ? encoding='macintosh'?>", "<?xml > encoding='macintosh'?>",
                             "<?xml version='1.0'><a encoding='macintosh'>"}) {
        EXPECT_EQ(utf8(text), text);
    }
}

TEST(PropertyListEncoding, WithoutAClosingQuoteIsUtf8) {
    for (const char* text :
         {"<?xml encoding='macintosh?>", "<?xml encoding=\"macintosh'?>", "<?xml encoding='"}) {
        EXPECT_EQ(utf8(text), text);
    }
}

TEST(PropertyListEncoding, TakesADeclarationOnlyAtTheStartAndWithoutBlanks) {
    for (const char* text : {" <?xml encoding='macintosh'?>", "<?xml encoding = 'macintosh'?>",
                             "<?xml ENCODING='macintosh'?>", "<?xml?> encoding='macintosh'"}) {
        EXPECT_EQ(utf8(text), text);
    }
}

TEST(PropertyListEncoding, AMarkOutweighsTheDeclaration) {
    EXPECT_EQ(utf8("\xEF\xBB\xBF<?xml encoding='macintosh'?>"), "<?xml encoding='macintosh'?>");
}

TEST(PropertyListEncoding, KnowsUtf16AndUtf32ByTheirMarks) {
    EXPECT_EQ(utf8("\xFE\xFF\0<\0\xE9\xD8\x3D\xDE\0"s), "<\xC3\xA9\xF0\x9F\x98\x80");
    EXPECT_EQ(utf8("\xFF\xFE<\0\xE9\0\x3D\xD8\0\xDE"s), "<\xC3\xA9\xF0\x9F\x98\x80");
    EXPECT_EQ(utf8("\xFF\xFE\0\0<\0\0\0\0\xF6\x01\0"s), "<\xF0\x9F\x98\x80");
    EXPECT_EQ(utf8("\0\0\xFE\xFF\0\0\0<\0\x01\xF6\0"s), "<\xF0\x9F\x98\x80");
}

TEST(PropertyListEncoding, Utf16EndsAtALoneSurrogateOrHalfAUnit) {
    EXPECT_EQ(utf8("\xFF\xFE<\0\x3D\xD8>\0"s), "<");
    EXPECT_EQ(utf8("\xFF\xFE<\0\x3D\xD8"s), "<");
    EXPECT_EQ(utf8("\xFF\xFE<\0>"s), "<");
}
