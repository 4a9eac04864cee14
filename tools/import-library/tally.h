// The totals of many imports.
#pragma once

#include "causes.h"
#include "report.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace lumo::library {

/// A cause and the number of its failures.
struct CauseCount {
    Cause cause;
    std::uint64_t failures = 0;
};

/// A recorded folder and the number of its samples that were not found.
struct MissingSamples {
    std::string folder; ///< bytes; empty for recorded names without a folder
    std::uint64_t samples = 0;
};

/// Sums over reports.
class Tally {
public:
    void add(const Report& report);

    std::uint64_t imported = 0;
    std::uint64_t failed = 0;
    std::uint64_t samples = 0; ///< sum over the imported instruments
    std::uint64_t copied_bytes = 0;

    /// The causes of failures, the most frequent first.
    std::vector<CauseCount> causes() const;

    /// The samples that were not found, each recorded path once, grouped by recorded folder, the
    /// largest group first. With more than ten groups, parent folders are used instead, as deep as
    /// this limit allows.
    std::vector<MissingSamples> missing() const;

private:
    std::map<std::string, CauseCount> causes_; // by their text
    std::set<std::string> missing_;            // recorded paths
};

} // namespace lumo::library
