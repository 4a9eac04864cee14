// What came out of many imports together.
#pragma once

#include "causes.h"
#include "report.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace lumo::library {

/// How many failures have one cause.
struct CauseCount {
    Cause cause;
    std::uint64_t failures = 0;
};

/// How many of the samples that were not found were recorded below one folder.
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
    std::uint64_t samples = 0; ///< of the imported instruments, each instrument's counted
    std::uint64_t copied_bytes = 0;

    /// The causes of failures, the most frequent first.
    std::vector<CauseCount> causes() const;

    /// The samples that were not found, each recorded path once, by the folder that they were
    /// recorded in, most samples first. Where these are more than `max_folders`, by folders further
    /// up, as deep as that number allows.
    std::vector<MissingSamples> missing(std::size_t max_folders = 10) const;

private:
    std::map<std::string, CauseCount> causes_; // by their text
    std::set<std::string> missing_;            // recorded paths
};

} // namespace lumo::library
