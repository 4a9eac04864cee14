// Formats the report line. Only what JSON requires is escaped: quote and backslash, tab and newline
// in their short form, other control characters as \u00XX. Bytes beyond ASCII are copied.
#include "report_line.h"

#include <array>
#include <cstdio>
#include <utility>
#include <vector>

namespace lumo::exs {
namespace {

std::string control_character(char c) {
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "\\u%04x", static_cast<unsigned char>(c));
    return text.data();
}

void append_escaped(std::string& literal, char c) {
    if (c == '"' || c == '\\') {
        literal += {'\\', c};
    } else if (c == '\t') {
        literal += "\\t";
    } else if (c == '\n') {
        literal += "\\n";
    } else if (static_cast<unsigned char>(c) < 0x20) {
        literal += control_character(c);
    } else {
        literal += c;
    }
}

std::string json(const std::string& text) {
    std::string literal = "\"";
    for (const char c : text) {
        append_escaped(literal, c);
    }
    return literal + '"';
}

/// A JSON array of the results of `write` for each element.
template <typename List, typename Write>
std::string json_array(const List& list, Write write) {
    std::string array = "[";
    for (const auto& element : list) {
        array += array.size() > 1 ? "," : "";
        array += write(element);
    }
    return array + ']';
}

std::string json(const std::vector<std::string>& texts) {
    return json_array(texts, [](const std::string& text) { return json(text); });
}

std::string json_bool(bool value) {
    return value ? "true" : "false";
}

std::string one_decimal(double value) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.1f", value);
    return text.data();
}

std::string redirection(const std::pair<std::string, std::string>& paths) {
    return "{\"from\":" + json(paths.first) + ",\"to\":" + json(paths.second) + "}";
}

std::string layer_object(const Shape::Layer& layer) {
    return "{\"name\":" + json(layer.name) + ",\"zones\":" + std::to_string(layer.zones) +
           ",\"loopedZones\":" + std::to_string(layer.looped_zones) +
           ",\"controllerChosen\":" + json_bool(layer.controller_chosen) +
           ",\"onRelease\":" + json_bool(layer.on_release) + "}";
}

std::string shape_object(const Shape& shape) {
    return "{\"zones\":" + std::to_string(shape.zones) +
           ",\"maxStack\":" + std::to_string(shape.max_stack) +
           ",\"stackedPercent\":" + one_decimal(shape.stacked_percent) +
           ",\"lowestKey\":" + std::to_string(shape.lowest_key) +
           ",\"highestKey\":" + std::to_string(shape.highest_key) +
           ",\"layers\":" + json_array(shape.layers, layer_object) + "}";
}

} // namespace

std::string report_line(const Report& report) {
    return "{\"name\":" + json(report.name) + ",\"source\":" + json(report.source) +
           ",\"ok\":" + json_bool(report.ok) + ",\"error\":" + json(report.error) +
           ",\"relinked\":" + json_array(report.relink.relinked, redirection) +
           ",\"unresolved\":" + json(report.relink.unresolved) +
           ",\"appleLibrary\":" + json(report.relink.apple_library) +
           ",\"samples\":" + std::to_string(report.samples) +
           ",\"sampleBytes\":" + std::to_string(report.sample_bytes) +
           ",\"copiedBytes\":" + std::to_string(report.copied_bytes) +
           ",\"stateFile\":" + json(report.state_file) +
           ",\"loadMs\":" + one_decimal(report.load_ms) +
           ",\"shape\":" + shape_object(report.shape) + "}";
}

void print(const Report& report) {
    std::puts(report_line(report).c_str());
    std::fflush(stdout);
}

} // namespace lumo::exs
