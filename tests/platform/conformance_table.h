// A count of how recorded results of CoreFoundation compare with what this platform gives.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace lumo::test {

/// One row for each function (or group of cases) that was compared.
class ConformanceTable {
public:
    /// A case whose results were compared; `detail` says what was seen when they were not the same.
    void compare(const std::string& row, bool is_equal, const std::string& detail);
    /// A case in which another result is wanted; the reason is printed once for each row.
    void differs_on_purpose(const std::string& row, const std::string& reason);
    /// A case of a function, encoding or flag that the platform does not have.
    void not_offered(const std::string& row, const std::string& what);

    /// Prints the table, the reasons and the first few differences to standard output.
    void print(const std::string& title) const;
    /// How many cases of all rows gave the same.
    std::size_t equal() const;
    /// How many did not, though they should have.
    std::size_t differing() const { return differences_.size(); }

private:
    struct Row {
        std::size_t equal = 0;
        std::size_t on_purpose = 0;
        std::size_t differs = 0;
        std::size_t not_offered = 0;
    };

    std::map<std::string, Row> rows_;
    std::map<std::string, std::size_t> remarks_;
    std::vector<std::string> differences_;
};

} // namespace lumo::test
