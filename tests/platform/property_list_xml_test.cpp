// Property lists in XML, read as in CoreFoundation. Uses public headers only.
#include "platform/property_list_text.h"

#include <cstddef>
#include <string>

namespace lumo::test {
namespace {

std::string nested(const std::string& open, const std::string& close, std::size_t depth,
                   const std::string& inside = "") {
    std::string text;
    for (std::size_t i = 0; i < depth; ++i) {
        text += open;
    }
    text += inside;
    for (std::size_t i = 0; i < depth; ++i) {
        text += close;
    }
    return text;
}

} // namespace

TEST(PropertyListXml, ReadsEveryKindOfValue) {
    EXPECT_EQ(read_with_format("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                               "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"x\">\n"
                               "<plist version=\"1.0\">\n<dict>\n"
                               "\t<key>a</key>\n\t<array>\n\t\t<integer>-5</integer>\n"
                               "\t\t<real>2.5</real>\n\t\t<true/>\n\t\t<false/>\n\t</array>\n"
                               "\t<key>b</key>\n\t<data>\n\tAAEC\n\t</data>\n"
                               "\t<key>c</key>\n\t<date>2001-01-02T00:00:00Z</date>\n"
                               "\t<key>d</key>\n\t<string>text</string>\n"
                               "\t<key>e</key>\n\t<dict/>\n</dict>\n</plist>\n"),
              "xml {\"a\": [-5, real 2.5, true, false], \"b\": <000102>, \"c\": date 86400, "
              "\"d\": \"text\", \"e\": {}}");
}

TEST(PropertyListXml, NeedsNoPlistElementAndLooksAtNothingBehindTheRoot) {
    EXPECT_EQ(read_and_describe("<true/><garbage"), "true");
    EXPECT_EQ(read_and_describe("<plist><true/></plist>&\x01<"), "true");
    EXPECT_EQ(read_and_describe("<plist><plist><true/></plist></plist>"), "true");
}

TEST(PropertyListXml, APlistElementHoldsExactlyOneValueAndEnds) {
    EXPECT_EQ(read_and_describe("<plist/>"), refused);
    EXPECT_EQ(read_and_describe("<plist></plist>"), refused);
    EXPECT_EQ(read_and_describe("<plist><true/><true/></plist>"), refused);
    EXPECT_EQ(read_and_describe("<plist><true/>"), refused);
    EXPECT_EQ(read_and_describe("<plist><true/></plist"), refused);
}

TEST(PropertyListXml, AttributesEndAtTheFirstBracket) {
    EXPECT_EQ(read_and_describe("<string a=\"x>y\">z</string>"), "\"y\\0022>z\"");
    EXPECT_EQ(read_and_describe("<string a=b/>"), "\"\"");
}

TEST(PropertyListXml, ATagNameEndsAtABlankAndOnlyOneSlashBehindItIsNotItsOwn) {
    EXPECT_EQ(read_and_describe("<true/>"), "true");
    EXPECT_EQ(read_and_describe("<true /></true>"), "true");
    EXPECT_EQ(read_and_describe("<true a=b// />"), "true");
    for (const char* text : {"<true//>", "<dict/ ></dict>", "<string/a>b</string>", "<true/ />"}) {
        EXPECT_EQ(read_and_describe(text), refused) << text;
    }
}

TEST(PropertyListXml, PassesOverProcessingInstructionsBetweenElements) {
    EXPECT_EQ(read_and_describe("<array><?x?><true/><?y <z/> ?></array>"), "[true]");
    EXPECT_EQ(read_and_describe("<dict><?x?><key>a</key><?x?><true/></dict>"), "{\"a\": true}");
    EXPECT_EQ(read_and_describe("<plist><?x?><true/><?x?></plist>"), "true");
    EXPECT_EQ(read_and_describe("<array><?></array>"), "[]");
    EXPECT_EQ(read_and_describe("<?><true/>"), refused);
    EXPECT_EQ(read_and_describe("<array><?x></array>"), refused);
    EXPECT_EQ(read_and_describe("<string>a<?x?></string>"), refused);
}

TEST(PropertyListXml, TextIsKeptAsItStands) {
    EXPECT_EQ(read_and_describe("<string> a\r\n\x01 > ]]></string>"),
              "\" a\\000d\\000a\\0001 > ]]>\"");
}

TEST(PropertyListXml, ResolvesEntities) {
    EXPECT_EQ(read_and_describe("<string>&lt;&gt;&amp;&apos;&quot;&#65;&#x1F600;</string>"),
              "\"<>&'\\0022A\\d83d\\de00\"");
    EXPECT_EQ(read_and_describe("<string>&#x7F;&#x80;&#x7FF;&#x800;&#xFFFD;&#x1F601;</string>"),
              "\"\\007f\\0080\\07ff\\0800\\fffd\\d83d\\de01\"");
    EXPECT_EQ(read_and_describe("<string>&#;</string>"), "\"\\0000\"");
    for (const char* entity : {"&nbsp;", "&", "&LT;", "&#X41;", "&#12a;", "&#-5;", "&#xD800;",
                               "&#x110000;", "&#000000065;", "&#1"}) {
        EXPECT_EQ(read_and_describe("<string>" + std::string{entity} + "</string>"), refused)
            << entity;
    }
}

TEST(PropertyListXml, ResolvesCharacterDataInText) {
    EXPECT_EQ(read_and_describe("<string>x<![CDATA[<a> & ]] ]]>y&amp;</string>"),
              "\"x<a> & ]] y&\"");
    EXPECT_EQ(read_and_describe("<real><![CDATA[1.5]]></real>"), "real 1.5");
    EXPECT_EQ(read_and_describe("<integer><![CDATA[1]]></integer>"), refused);
    EXPECT_EQ(read_and_describe("<string><![CDATA[x</string>"), refused);
}

TEST(PropertyListXml, CommentsStandBetweenElementsOnly) {
    EXPECT_EQ(read_and_describe("<!-- a --><plist><!-- -- --><true/><!----></plist>"), "true");
    EXPECT_EQ(read_and_describe("<string>a<!-- b --></string>"), refused);
    EXPECT_EQ(read_and_describe("<plist><!-- <true/></plist>"), refused);
}

TEST(PropertyListXml, ACommentBeforeTheRootIsNeverEmpty) {
    EXPECT_EQ(read_and_describe("<!----><true/>"), refused);
    EXPECT_EQ(read_and_describe("<!----><!-- --><true/>"), "true");
}

TEST(PropertyListXml, RefusesAnInternalSubset) {
    EXPECT_EQ(read_and_describe("<!DOCTYPE plist [<!ENTITY e \"v\">]><true/>"), refused);
}

TEST(PropertyListXml, TheLaterOfTwoEqualKeysWins) {
    EXPECT_EQ(read_and_describe("<dict><key>a</key><true/><key>a</key><false/></dict>"),
              "{\"a\": false}");
}

TEST(PropertyListXml, ComposedAndDecomposedKeysAreTwo) {
    EXPECT_EQ(
        read_and_describe("<dict><key>\xC3\xA9</key><true/><key>e\xCC\x81</key><true/></dict>"),
        "{\"\\00e9\": true, \"e\\0301\": true}");
}

TEST(PropertyListXml, ADictionaryHoldsKeysAndValuesInTurn) {
    EXPECT_EQ(read_and_describe("<dict><key>a</key></dict>"), refused);
    EXPECT_EQ(read_and_describe("<dict><string>a</string><true/></dict>"), refused);
    EXPECT_EQ(read_and_describe("<dict>text</dict>"), refused);
    EXPECT_EQ(read_and_describe("<dict><key>a</key><key>b</key></dict>"), "{\"a\": \"b\"}");
}

TEST(PropertyListXml, ANumberUnderTheUidKeyIsAUid) {
    EXPECT_EQ(read_and_describe("<dict><key>CF$UID</key><integer>7</integer></dict>"), "uid 7");
    EXPECT_EQ(read_and_describe("<dict><key>CF$UID</key><integer>-1</integer></dict>"),
              "uid 4294967295");
    EXPECT_EQ(read_and_describe("<dict><key>CF$UID</key><real>nan</real></dict>"), "uid 0");
    EXPECT_EQ(read_and_describe("<dict><key>CF$UID</key><true/></dict>"), "{\"CF$UID\": true}");
}

TEST(PropertyListXml, NumbersBeyond64SignedBitsAreWide) {
    EXPECT_EQ(read_and_describe("<integer>9223372036854775807</integer>"), "9223372036854775807");
    EXPECT_EQ(read_and_describe("<integer>9223372036854775808</integer>"),
              "0x00000000000000008000000000000000 wide");
    EXPECT_EQ(read_and_describe("<integer>18446744073709551616</integer>"), refused);
}

TEST(PropertyListXml, DropsAByteOrderMarkAtTheStartOfText) {
    EXPECT_EQ(read_and_describe("<string>\xEF\xBB\xBF\xEF\xBB\xBF"
                                "a</string>"),
              "\"\\feffa\"");
    EXPECT_EQ(read_and_describe("<string>&#xFEFF;a</string>"), "\"a\"");
}

TEST(PropertyListXml, RefusesTextThatIsNotUtf8) {
    for (const char* text : {"\xFF", "\xC0\xAF", "\xED\xA0\xBD", "\xF4\x90\x80\x80", "\xE6\x97"}) {
        EXPECT_EQ(read_and_describe("<string>" + std::string{text} + "</string>"), refused);
    }
    EXPECT_EQ(read_and_describe("<plist a='\xFF'><!-- \xFF --><true/></plist>"), "true");
}

TEST(PropertyListXml, TakesAStrayCopyrightSignOfLatinText) {
    EXPECT_EQ(read_and_describe("<string>x\xA9y</string>"), "\"x\\fffdy\"");
    EXPECT_EQ(read_and_describe("<string>\xA9\xA9 \xC2\xA9</string>"), "\"\\fffd\\fffd \\00a9\"");
    EXPECT_EQ(read_and_describe("<string>\xEF\xBB\xBF\xA9</string>"), "\"\\fffd\"");
    EXPECT_EQ(read_and_describe("<string><![CDATA[\xA9]]>&amp;</string>"), "\"\\fffd&\"");
    EXPECT_EQ(read_and_describe("<dict><key>\xA9</key><true/></dict>"), "{\"\\fffd\": true}");
    for (const char* text : {"\xA8", "\xAA", "\xC2\xA9\xA8", "\xE2\xA9", "\xE2\x82", "\xA9\xFF"}) {
        EXPECT_EQ(read_and_describe("<string>" + std::string{text} + "</string>"), refused) << text;
    }
}

TEST(PropertyListXml, ReadsTheDeclaredEncoding) {
    EXPECT_EQ(read_and_describe("<?xml encoding=\"ISO-8859-1\"?><string>\xE9</string>"),
              "\"\\00e9\"");
    EXPECT_EQ(read_and_describe("<?xml encoding=\"none\"?><true/>"), refused);
}

TEST(PropertyListXml, ContainersMayNest512Deep) {
    EXPECT_NE(read_and_describe(nested("<array>", "</array>", 512, "<true/>")), refused);
    EXPECT_EQ(read_and_describe(nested("<array>", "</array>", 513)), refused);
    EXPECT_NE(read_and_describe(nested("<array>", "</array>", 512, "<array/>")), refused);
    EXPECT_EQ(read_and_describe(nested("<dict><key>k</key>", "</dict>", 513, "<true/>")), refused);
}

TEST(PropertyListXml, RefusesAnyDepthBeyond) {
    EXPECT_EQ(read_and_describe(nested("<array>", "</array>", 100000)), refused);
}

TEST(PropertyListXml, RefusesWhatIsCutShort) {
    const std::string whole = "<?xml version='1.0'?><!DOCTYPE plist><plist><dict><key>k&lt;</key>"
                              "<array><integer>1</integer><data>AAAA</data><true></true>"
                              "<date>2001-01-01T00:00:00Z</date><!-- c --><real>1.5</real>"
                              "<string>a<![CDATA[b]]>&#65;</string></array></dict></plist>";
    ASSERT_NE(read_and_describe(whole), refused);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        ASSERT_EQ(read_and_describe(whole.substr(0, size)), refused) << size;
    }
}

} // namespace lumo::test
