// One report line of the tool, taken apart.
#pragma once

#include <lumo/state.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lumo::library {

/// What a report line says. Texts are the tool's bytes, which need not be UTF-8;
/// docs/report-line.md describes each.
struct Report {
    std::string name;
    std::string source;
    bool ok = false;
    std::string error;
    std::vector<std::pair<std::string, std::string>> relinked; ///< from, to
    std::vector<std::string> unresolved;
    std::vector<std::string> apple_library;
    std::uint64_t samples = 0;
    std::uint64_t sample_bytes = 0;
    std::uint64_t copied_bytes = 0;
    std::string state_file;
    double load_ms = 0;
    exs::Shape shape;
};

/// Takes a line (without its end) apart; nothing when it is no whole report line.
std::optional<Report> parse_report(std::string_view line);

/// The line of an instrument of which the tool gave none, because it ended there: not ok, with
/// `error`, and everything else at its start.
std::string line_without_import(const std::string& source, const std::string& error);

} // namespace lumo::library
