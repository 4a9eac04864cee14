// Counts how this platform's results compare with the recorded results of CoreFoundation.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace lumo::test {

/// One row for each compared function or group of cases.
class ConformanceTable {
public:
    /// Adds a case whose results were compared; `detail` describes the difference if there is one.
    void compare(const std::string& row, bool is_equal, const std::string& detail);
    /// Adds a case in which the result differs by design; the reason is printed once for each row.
    void differs_on_purpose(const std::string& row, const std::string& reason);
    /// Adds a case of a function, encoding or flag that the platform does not have.
    void not_offered(const std::string& row, const std::string& what);

    /// Prints the table, the reasons and the first few differences to standard output.
    void print(const std::string& title) const;
    /// The number of cases, over all rows, with equal results.
    std::size_t equal() const;
    /// The number of cases, over all rows, with unintended differences.
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
