// Reading property lists, compared with recorded results of CoreFoundation.
#include "platform/property_list_text.h"

#include <ostream>

namespace lumo::test {
namespace {

void compare_reading(const Json& record, const std::string& row, ConformanceTable& table) {
    if (record.contains("unspecified")) {
        return;
    }
    const std::string name = record["name"].get<std::string>();
    const std::string seen = read_with_format(vector_bytes(record["input"]));
    std::string wanted = refused;
    if (record["accepted"].get<bool>()) {
        wanted = record["format"].get<std::string>() + " " + described(record["dump"]);
    }
    if (wanted.starts_with("openstep ") && seen == refused) {
        table.differs_on_purpose(row, "OpenStep text is not read");
        return;
    }
    table.compare(row, seen == wanted,
                  name + " gave " + seen.substr(0, 200) + ", not " + wanted.substr(0, 200));
}

/// A file of records, and the minimum number of them whose results must be equal here.
struct Case {
    const char* name;
    std::size_t min_equal;
};

std::ostream& operator<<(std::ostream& out, const Case& records) {
    return out << records.name;
}

class PropertyListVectors : public testing::TestWithParam<Case> {};

TEST_P(PropertyListVectors, AreReadLikeTheRecordedResults) {
    const std::string file = GetParam().name;
    ConformanceTable table;
    for (const Json& record : read_vectors("read-" + file + ".json")) {
        compare_reading(record, file, table);
    }
    table.print("reading property lists");
    EXPECT_EQ(table.differing(), 0u);
    EXPECT_GE(table.equal(), GetParam().min_equal);
}

INSTANTIATE_TEST_SUITE_P(Reading, PropertyListVectors,
                         testing::Values(Case{"xml", 311}, Case{"binary", 185},
                                         Case{"encodings", 73}, Case{"openstep", 32},
                                         Case{"tiny", 10}),
                         [](const auto& records) { return std::string{records.param.name}; });

} // namespace
} // namespace lumo::test
