// nlohmann-json reads the lines. It accepts UTF-8 only, but paths may be any bytes, so a line is
// converted to UTF-8 first, and its texts are converted back.
#include "report.h"

#include "text.h"

#include <filesystem>
#include <nlohmann/json.hpp>

namespace lumo::library {
namespace {

using Json = nlohmann::json;

std::string text_of(const Json& value) {
    return as_bytes(value.get_ref<const std::string&>());
}

std::vector<std::string> texts_of(const Json& list) {
    std::vector<std::string> texts;
    for (const Json& text : list) {
        texts.push_back(text_of(text));
    }
    return texts;
}

exs::Shape shape_of(const Json& object) {
    exs::Shape shape;
    shape.zones = object.at("zones");
    shape.max_stack = object.at("maxStack");
    shape.stacked_percent = object.at("stackedPercent");
    shape.lowest_key = object.at("lowestKey");
    shape.highest_key = object.at("highestKey");
    for (const Json& layer : object.at("layers")) {
        shape.layers.push_back({text_of(layer.at("name")), layer.at("zones"),
                                layer.at("loopedZones"), layer.at("controllerChosen"),
                                layer.at("onRelease")});
    }
    return shape;
}

Report report_of(const Json& object) {
    Report report;
    report.name = text_of(object.at("name"));
    report.source = text_of(object.at("source"));
    report.ok = object.at("ok");
    report.error = text_of(object.at("error"));
    for (const Json& pair : object.at("relinked")) {
        report.relinked.emplace_back(text_of(pair.at("from")), text_of(pair.at("to")));
    }
    report.unresolved = texts_of(object.at("unresolved"));
    report.apple_library = texts_of(object.at("appleLibrary"));
    report.samples = object.at("samples");
    report.sample_bytes = object.at("sampleBytes");
    report.copied_bytes = object.at("copiedBytes");
    report.state_file = text_of(object.at("stateFile"));
    report.load_ms = object.at("loadMs");
    report.shape = shape_of(object.at("shape"));
    return report;
}

} // namespace

std::optional<Report> parse_report(std::string_view line) {
    try {
        return report_of(Json::parse(as_utf8(line)));
    } catch (const Json::exception&) {
        return std::nullopt;
    }
}

std::string line_without_import(const std::string& source, const std::string& error) {
    nlohmann::ordered_json line;
    line["name"] = as_utf8(std::filesystem::path(source).stem().string());
    line["source"] = as_utf8(source);
    line["ok"] = false;
    line["error"] = as_utf8(error);
    for (const char* list : {"relinked", "unresolved", "appleLibrary"}) {
        line[list] = Json::array();
    }
    for (const char* number : {"samples", "sampleBytes", "copiedBytes"}) {
        line[number] = 0;
    }
    line["stateFile"] = "";
    line["loadMs"] = 0.0;
    line["shape"] = {{"zones", 0},       {"maxStack", 1},   {"stackedPercent", 0.0},
                     {"lowestKey", 127}, {"highestKey", 0}, {"layers", Json::array()}};
    return as_bytes(line.dump());
}

} // namespace lumo::library
