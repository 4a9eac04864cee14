// Parses a report line of the tool.
#pragma once

#include <lumo/state.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lumo::library {

/// The contents of a report line. Texts are the tool's bytes, which may not be UTF-8;
/// docs/report-line.md describes each field.
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

/// Parses a line (without its line end); nothing when it is not a complete report line.
std::optional<Report> parse_report(std::string_view line);

/// The line for an instrument at which the tool ended without printing one: not ok, with `error`;
/// all other fields have their initial values.
std::string line_without_import(const std::string& source, const std::string& error);

} // namespace lumo::library
