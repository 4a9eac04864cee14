// Writes the seeds of the property list fuzz targets: make_plist_seeds CORPUS. A few files for each
// reader, which contain every element and every marker; the round trip gets all of them.
#include "platform/binary_list_builder.h"
#include "support/temp_folder.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

using lumo::test::big_endian;
using lumo::test::BinaryList;
using namespace std::string_literals;

namespace {

using Seeds = std::vector<std::pair<std::string, std::string>>;

std::string in_utf16(const std::string& ascii) {
    std::string text = "\xFF\xFE";
    for (const char c : ascii) {
        text += {c, '\0'};
    }
    return text;
}

std::string in_utf32(const std::string& ascii) {
    std::string text = "\0\0\xFE\xFF"s;
    for (const char c : ascii) {
        text += {'\0', '\0', '\0', c};
    }
    return text;
}

const std::string state = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>Zones</key>
	<array>
		<dict>
			<key>max key</key>
			<integer>60</integer>
			<key>gain</key>
			<real>-3.5</real>
			<key>enabled</key>
			<true/>
		</dict>
		<dict/>
	</array>
	<key>data</key>
	<data>
	AAAAAAEC
	</data>
	<key>saved</key>
	<date>2024-02-29T12:34:56Z</date>
</dict>
</plist>
)";

Seeds xml_seeds() {
    return {
        {"state.plist", state},
        {"text.plist", "<array><string>a&lt;&#x1F600;<![CDATA[<b>]]></string><string/>"
                       "<key>\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80</key></array>"},
        {"numbers.plist", "<array><integer>-0x10</integer><integer>18446744073709551615</integer>"
                          "<real>1e-400</real><real>-inf</real><real>nan</real></array>"},
        {"uid.plist", "<plist><dict><key>CF$UID</key><integer>7</integer></dict></plist>"},
        {"comments.plist", "<!-- a --><plist><!-- b --><false></false><!----></plist>"},
        {"latin.plist", "<?xml encoding='ISO-8859-1'?><string>\xE9</string>"},
        {"stray.plist", "<plist><?x y?><dict><key>a\xA9</key><array><?><real>\xC2\xA0-2.5</real>"
                        "<string>\xEF\xBB\xBF\xA9 &amp;</string><true a=b// /></array>"
                        "</dict></plist>"},
        {"windows.plist", "<?xml encoding='windows-1252'?><string>\x80</string>"},
        {"utf16.plist", in_utf16("<array><string>x</string></array>")},
        {"utf32.plist", in_utf32("<dict><key>k</key><data></data></dict>")}};
}

Seeds binary_seeds() {
    const BinaryList all{
        .objects = {"\xAB\x01\x02\x03\x04\x05\x06\x07\x08\x0B\x0C\x0D", "\x00"s, "\x08",
                    "\x11\x03\xE8", "\x22\x3F\xC0\x00\x00"s, "\x23" + big_endian(1, 8),
                    "\x33" + big_endian(2, 8), "\x4F\x10\x0F" + std::string(15, 'd'),
                    "\xD1\x09\x0A", "\x51k", "\x62\x00\xE9\xD8\x00"s, "\x83" + big_endian(7, 4),
                    "\xC2\x09\x0A", "\x14" + big_endian(0, 8) + big_endian(~0ull, 8)}};
    const BinaryList state_list{.objects = {"\xD2\x01\x02\x03\x04", "\x55Zones", "\x54name",
                                            "\xA2\x05\x05", "\x53" + "abc"s, "\xD1\x06\x07",
                                            "\x57max key", "\x10\x3C"}};
    return {{"all.bplist", all.bytes()},
            {"state.bplist", state_list.bytes()},
            {"nested.bplist", lumo::test::nested_arrays(20).bytes()},
            {"wide.bplist", BinaryList{.objects = {"\xA1" + big_endian(1, 9), "\x09"},
                                       .offset_width = 9,
                                       .ref_width = 9}
                                .bytes()}};
}

void write(const std::filesystem::path& folder, const Seeds& seeds) {
    for (const auto& [name, bytes] : seeds) {
        lumo::test::write_file(folder / name, bytes);
    }
}

} // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        std::fputs("usage: make_plist_seeds CORPUS\n", stderr);
        return 1;
    }
    const std::filesystem::path corpus = arguments[1];
    write(corpus / "fuzz_plist_xml", xml_seeds());
    write(corpus / "fuzz_plist_binary", binary_seeds());
    write(corpus / "fuzz_plist_round_trip", xml_seeds());
    write(corpus / "fuzz_plist_round_trip", binary_seeds());
    return 0;
}
