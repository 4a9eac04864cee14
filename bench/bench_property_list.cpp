// Reading and writing a large state: XML compared with expat, which only tokenises it, and the
// binary form compared with libplist. The measured time includes releasing the objects on both
// sides.
#include "paired_time.h"
#include "support/plist_io.h"
#include "support/preset_text.h"

#include <expat.h>
#include <plist/plist.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <type_traits>

namespace {

using lumo::Ref;
using lumo::test::binary_form;
using lumo::test::list_of;

void tokenise(const std::string& text) {
    XML_Parser parser = XML_ParserCreate(nullptr);
    if (XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1) != XML_STATUS_OK) {
        std::abort();
    }
    XML_ParserFree(parser);
}

using PlistHolder = std::unique_ptr<std::remove_pointer_t<plist_t>, decltype(&plist_free)>;

PlistHolder read_with_libplist(const Ref<CFDataRef>& data) {
    plist_t list = nullptr;
    plist_from_bin(reinterpret_cast<const char*>(CFDataGetBytePtr(data.get())),
                   static_cast<std::uint32_t>(CFDataGetLength(data.get())), &list);
    return {list, plist_free};
}

std::uint32_t write_with_libplist(const PlistHolder& list) {
    char* bytes = nullptr;
    std::uint32_t size = 0;
    plist_to_bin(list.get(), &bytes, &size);
    plist_to_bin_free(bytes);
    return size;
}

void compare_size(const char* name, std::size_t ours, std::size_t reference) {
    std::printf("%s\t%zu B\t%zu B\t%.3f\tat most 1.0\n", name, ours, reference,
                static_cast<double>(ours) / static_cast<double>(reference));
}

} // namespace

int main(int count, char** arguments) {
    const bool small = count > 1 && std::string(arguments[1]) == "--small";
    const int rounds = small ? 3 : 15;
    const std::string text = lumo::test::large_state_text(small ? 100 : 2000);
    const auto xml = lumo::test::data_of(text);
    const auto from_xml = list_of(xml.get());
    const auto binary = binary_form(from_xml.get());
    const auto from_binary = list_of(binary.get());
    const auto with_libplist = read_with_libplist(binary);
    std::printf("# a state of %zu bytes in XML\n", text.size());

    lumo::bench::compare(
        "read an XML state, against expat tokenising it", "1.0", rounds,
        [&] { list_of(xml.get()); }, [&] { tokenise(text); });
    lumo::bench::compare(
        "read a binary state, against libplist", "0.3", rounds, [&] { list_of(binary.get()); },
        [&] { read_with_libplist(binary); });
    lumo::bench::compare(
        "write a state read from XML, against libplist", "0.3", rounds,
        [&] { binary_form(from_xml.get()); }, [&] { write_with_libplist(with_libplist); });
    lumo::bench::compare(
        "write a state read from binary, against libplist", "0.3", rounds,
        [&] { binary_form(from_binary.get()); }, [&] { write_with_libplist(with_libplist); });
    compare_size("bytes of the binary state, against libplist",
                 static_cast<std::size_t>(CFDataGetLength(binary.get())),
                 write_with_libplist(with_libplist));
}
