// Files written here, read by Python's plistlib and by libplist. libplist also writes them again,
// for a comparison of sizes.
#include "platform/property_list_text.h"
#include "support/run_process.h"
#include "support/temp_folder.h"

#include <plist/plist.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <ostream>
#include <type_traits>

namespace lumo::test {
namespace {

using OtherList = std::unique_ptr<std::remove_pointer_t<plist_t>, decltype(&plist_free)>;

OtherList read_by_libplist(const std::string& bytes) {
    plist_t list = nullptr;
    plist_from_bin(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &list);
    return {list, plist_free};
}

/// Reads `bytes` with libplist and writes them with `write`: plist_to_bin or plist_to_xml.
template <class Write, class Free>
std::string written_by_libplist(const std::string& bytes, Write write, Free free_bytes) {
    const OtherList list = read_by_libplist(bytes);
    char* text = nullptr;
    std::uint32_t size = 0;
    write(list.get(), &text, &size);
    std::string copy(text == nullptr ? "" : text, size);
    free_bytes(text);
    return copy;
}

std::uint64_t number_at(const std::string& bytes, std::size_t at, std::size_t width) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < width; ++i) {
        value = value << 8 | static_cast<unsigned char>(bytes.at(at + i));
    }
    return value;
}

/// The number of reals in a binary property list that are stored in 8 bytes although 4 would hold
/// their value. libplist stores these in 4, since it does not keep a number's precision.
std::size_t narrow_reals(const std::string& bytes) {
    const std::size_t trailer = bytes.size() - 32;
    const std::size_t width = number_at(bytes, trailer + 6, 1);
    const std::uint64_t count = number_at(bytes, trailer + 8, 8);
    const std::uint64_t table = number_at(bytes, trailer + 24, 8);
    std::size_t found = 0;
    for (std::uint64_t i = 0; i < count; ++i) {
        const std::size_t at = number_at(bytes, table + i * width, width);
        if (bytes[at] == '\x23') {
            const auto real = std::bit_cast<double>(number_at(bytes, at + 1, 8));
            found += static_cast<double>(static_cast<float>(real)) == real ? 1 : 0;
        }
    }
    return found;
}

std::string integers(int count) {
    std::string row;
    for (int i = 0; i < count; ++i) {
        row += "<integer>" + std::to_string(1000 + i) + "</integer>";
    }
    return "<array>" + row + "</array>";
}

/// Values of every kind, among them reals that need 8 bytes and one that does not.
const std::string every_kind =
    "<dict><key>\xC3\xA9</key><string>\xE6\x97\xA5\xF0\x9F\x98\x80 &lt;</string>"
    "<key>long</key><string>sixteen letters.</string><key>empty</key><string/>"
    "<key>minus</key><integer>-5</integer><key>large</key><integer>9223372036854775807</integer>"
    "<key>real</key><real>0.1</real><key>half</key><real>0.5</real>"
    "<key>yes</key><true/><key>no</key><false/>"
    "<key>data</key><data>AAECAwQFBgcICQoLDA0ODw==</data>"
    "<key>date</key><date>2024-02-29T12:34:56Z</date>"
    "<key>uid</key><dict><key>CF$UID</key><integer>300</integer></dict>"
    "<key>same</key><array><dict><key>a</key><true/></dict><dict><key>a</key><true/></dict>"
    "<array/><dict/><string>a</string><data>AAAA</data><data>AAAA</data></array></dict>";

/// An array of `count` dictionaries with the same keys, as in a sampler state.
std::string zones(int count) {
    std::string row;
    for (int i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        row += "<dict><key>ID</key><integer>" + number;
        row += "</integer><key>enabled</key><true/><key>name</key><string>Zone #" + number;
        row += "</string><key>fine tune</key><real>" + std::to_string(i * 0.01);
        row += "</real><key>pan</key><real>0</real></dict>";
    }
    return "<dict><key>Zones</key><array>" + row + "</array></dict>";
}

std::string nested(int depth) {
    std::string open;
    std::string close;
    for (int i = 0; i < depth; ++i) {
        open += "<dict><key>level " + std::to_string(i) + "</key><array>";
        close += "<string>core</string></array></dict>";
    }
    return open + close;
}

std::string text_of(std::size_t length) {
    return "<array><string>" + std::string(length, 'x') + "</string></array>";
}

struct Case {
    const char* name;
    std::string xml;
};

std::ostream& operator<<(std::ostream& out, const Case& list) {
    return out << list.name;
}

class PropertyListReaders : public testing::TestWithParam<Case> {
protected:
    Ref<CFPropertyListRef> list_ = read_list(GetParam().xml);
    std::string bytes_ = written(list_.get());
};

std::vector<Case> cases() {
    return {{"every_kind", every_kind},
            {"zones", zones(500)},
            {"nested", nested(40)},
            {"empty_dictionary", "<dict/>"},
            {"254_integers", integers(254)},
            {"255_integers", integers(255)},
            {"65534_integers", integers(65534)},
            {"65535_integers", integers(65535)},
            {"70000_integers", integers(70000)},
            {"text_of_14", text_of(14)},
            {"text_of_15", text_of(15)},
            {"text_of_255", text_of(255)},
            {"text_of_65520", text_of(65520)},
            {"text_of_65600", text_of(65600)}};
}

TEST_P(PropertyListReaders, PlistlibReadsTheSame) {
    const TempFolder folder;
    write_file(folder / "list.bplist", bytes_);
    const ProcessResult result =
        run_process({"python3", std::string{LUMO_SOURCE} + "/tests/platform/describe_plist.py",
                     (folder / "list.bplist").string()});
    EXPECT_EQ(result.out, described(list_.get()) + "\n") << result.err;
}

TEST_P(PropertyListReaders, LibplistReadsTheSame) {
    const std::string xml = written_by_libplist(bytes_, plist_to_xml, plist_to_xml_free);
    EXPECT_EQ(read_and_describe(xml), described(list_.get()));
}

TEST_P(PropertyListReaders, LibplistWritesNoFewerBytesButForRealsThatItNarrows) {
    const std::string theirs = written_by_libplist(bytes_, plist_to_bin, plist_to_bin_free);
    ASSERT_EQ(theirs.substr(0, 8), "bplist00");
    EXPECT_LE(bytes_.size(), theirs.size() + 4 * narrow_reals(bytes_));
}

INSTANTIATE_TEST_SUITE_P(Lists, PropertyListReaders, testing::ValuesIn(cases()),
                         [](const auto& list) { return std::string{list.param.name}; });

} // namespace
} // namespace lumo::test
