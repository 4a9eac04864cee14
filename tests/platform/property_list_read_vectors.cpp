// Reading property lists, compared with recorded results of CoreFoundation.
#include "platform/property_list_text.h"

#include <map>
#include <vector>

namespace lumo::test {
namespace {

const std::string refused = "refused: \"NSCocoaErrorDomain\" 3840";

std::string row_of(const std::string& name) {
    static const std::map<std::string, std::string> rows = {{"xml", "read XML"},
                                                            {"enc", "read encodings"},
                                                            {"bin", "read binary"},
                                                            {"os", "read OpenStep text"},
                                                            {"tiny", "read next to nothing"}};
    return rows.at(name.substr(0, name.find('-')));
}

void compare_reading(const std::string& name, ConformanceTable& table) {
    const auto record = read_vectors("read/" + name + ".json");
    if (record->contains("unspecified")) {
        return;
    }
    const std::string seen = read_with_format(vector_bytes("read/" + name + ".in"));
    std::string wanted = refused;
    if ((*record)["accepted"].get<bool>()) {
        wanted = (*record)["format"].get<std::string>() + " " + described((*record)["dump"]);
    }
    if (wanted.starts_with("openstep ") && seen == refused) {
        table.differs_on_purpose(row_of(name), "OpenStep text is not read");
        return;
    }
    table.compare(row_of(name), seen == wanted,
                  name + " gave " + seen.substr(0, 200) + ", not " + wanted.substr(0, 200));
}

} // namespace

TEST(PropertyListVectors, ReadLikeTheRecordedResults) {
    const std::vector<std::string> names = vector_names("read");
    if (names.empty()) {
        GTEST_SKIP() << "no recorded results beside the project";
    }
    ConformanceTable table;
    for (const std::string& name : names) {
        compare_reading(name, table);
    }
    table.print("reading property lists");
    EXPECT_EQ(table.differing(), 0u);
    EXPECT_GE(table.equal(), 570u);
}

} // namespace lumo::test
