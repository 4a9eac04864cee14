// Counts and remarks are stored by row and printed in the order of the row names.
#include "platform/conformance_table.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>

namespace lumo::test {

void ConformanceTable::compare(const std::string& row, bool is_equal, const std::string& detail) {
    Row& counts = rows_[row];
    if (is_equal) {
        ++counts.equal;
        return;
    }
    ++counts.differs;
    differences_.push_back(row + ": " + detail);
}

void ConformanceTable::differs_on_purpose(const std::string& row, const std::string& reason) {
    ++rows_[row].on_purpose;
    ++remarks_[row + " differs on purpose: " + reason];
}

void ConformanceTable::not_offered(const std::string& row, const std::string& what) {
    ++rows_[row].not_offered;
    ++remarks_[row + " not offered: " + what];
}

void ConformanceTable::print(const std::string& title) const {
    std::printf("%-44s %8s %11s %8s %12s\n", title.c_str(), "equal", "on purpose", "differs",
                "not offered");
    for (const auto& [name, row] : rows_) {
        std::printf("  %-42s %8zu %11zu %8zu %12zu\n", name.c_str(), row.equal, row.on_purpose,
                    row.differs, row.not_offered);
    }
    for (const auto& [remark, count] : remarks_) {
        std::printf("  %s (%zu)\n", remark.c_str(), count);
    }
    constexpr std::size_t shown = 40;
    for (std::size_t i = 0; i < std::min(shown, differences_.size()); ++i) {
        std::printf("  DIFFERS %s\n", differences_[i].c_str());
    }
}

std::size_t ConformanceTable::equal() const {
    std::size_t sum = 0;
    for (const auto& [name, row] : rows_) {
        sum += row.equal;
    }
    return sum;
}

} // namespace lumo::test
