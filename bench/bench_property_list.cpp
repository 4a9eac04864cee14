// Reading and writing a large state: XML compared with expat, which only tokenises it, and the
// binary form compared with libplist. The measured time includes releasing the objects on both
// sides.
#include "base/ref.h"
#include "paired_time.h"
#include "state_text.h"

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

using lumo::adopt;
using lumo::Ref;

Ref<CFDataRef> data_of(const std::string& bytes) {
    return adopt(CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(bytes.data()),
                              static_cast<CFIndex>(bytes.size())));
}

Ref<CFPropertyListRef> read_list(const Ref<CFDataRef>& data) {
    return adopt(CFPropertyListCreateWithData(nullptr, data.get(), kCFPropertyListImmutable,
                                              nullptr, nullptr));
}

Ref<CFDataRef> write_list(const Ref<CFPropertyListRef>& list) {
    return adopt(CFPropertyListCreateData(nullptr, list.get(), kCFPropertyListBinaryFormat_v1_0, 0,
                                          nullptr));
}

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
    const std::string text = lumo::bench::state_text(small ? 100 : 2000);
    const auto xml = data_of(text);
    const auto from_xml = read_list(xml);
    const auto binary = write_list(from_xml);
    const auto from_binary = read_list(binary);
    const auto with_libplist = read_with_libplist(binary);
    std::printf("# a state of %zu bytes in XML\n", text.size());

    lumo::bench::compare(
        "read an XML state, against expat tokenising it", "1.0", rounds, [&] { read_list(xml); },
        [&] { tokenise(text); });
    lumo::bench::compare(
        "read a binary state, against libplist", "0.3", rounds, [&] { read_list(binary); },
        [&] { read_with_libplist(binary); });
    lumo::bench::compare(
        "write a state read from XML, against libplist", "0.3", rounds,
        [&] { write_list(from_xml); }, [&] { write_with_libplist(with_libplist); });
    lumo::bench::compare(
        "write a state read from binary, against libplist", "0.3", rounds,
        [&] { write_list(from_binary); }, [&] { write_with_libplist(with_libplist); });
    compare_size("bytes of the binary state, against libplist",
                 static_cast<std::size_t>(CFDataGetLength(binary.get())),
                 write_with_libplist(with_libplist));
}
