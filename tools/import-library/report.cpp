// nlohmann-json reads and writes the lines. It accepts UTF-8 only, but paths may be any bytes, so a
// line is converted to UTF-8 first, and its texts are converted back.
#include "report.h"

#include "report_reader.h"
#include "text.h"

#include <filesystem>
#include <nlohmann/json.hpp>

namespace lumo::library {

std::optional<Report> parse_report(std::string_view line) {
    std::optional<Report> report(std::in_place);
    if (!read_report(as_utf8(line), *report)) {
        report.reset();
    }
    return report;
}

std::string line_without_import(const std::string& source, const std::string& error) {
    nlohmann::ordered_json line;
    line["name"] = as_utf8(std::filesystem::path(source).stem().string());
    line["source"] = as_utf8(source);
    line["ok"] = false;
    line["error"] = as_utf8(error);
    for (const char* list : {"relinked", "unresolved", "appleLibrary"}) {
        line[list] = nlohmann::json::array();
    }
    for (const char* number : {"samples", "sampleBytes", "copiedBytes"}) {
        line[number] = 0;
    }
    line["stateFile"] = "";
    line["loadMs"] = 0.0;
    line["shape"] = {{"zones", 0},       {"maxStack", 1},   {"stackedPercent", 0.0},
                     {"lowestKey", 127}, {"highestKey", 0}, {"layers", nlohmann::json::array()}};
    return as_bytes(line.dump());
}

} // namespace lumo::library
