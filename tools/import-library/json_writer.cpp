// Written for speed: a page has hundreds of numbers for each instrument.
#include "json_writer.h"

#include "text.h"

#include <cmath>
#include <cstddef>
#include <nlohmann/json.hpp>

namespace lumo::library {
namespace {

/// How a character is written in a string; empty for a character that is written as it is. The
/// displayed form of a text has no control characters. Without "<" a string cannot end the HTML
/// element that contains it.
std::string_view escape_of(char character) {
    switch (character) {
    case '"':
        return "\\\"";
    case '\\':
        return "\\\\";
    case '<':
        return "\\u003c";
    default:
        return {};
    }
}

} // namespace

void JsonWriter::key(std::string_view name) {
    separate();
    json_.append("\"").append(name).append("\":");
    needs_comma_ = false;
}

void JsonWriter::new_line() {
    separate();
    json_ += '\n';
    needs_comma_ = false;
}

void JsonWriter::text(std::string_view bytes) {
    separate();
    json_ += '"';
    const std::string visible = shown(bytes);
    std::size_t written = 0;
    for (std::size_t i = 0; i != visible.size(); ++i) {
        if (const std::string_view escape = escape_of(visible[i]); !escape.empty()) {
            json_.append(visible, written, i - written).append(escape);
            written = i + 1;
        }
    }
    json_.append(visible, written).append("\"");
}

void JsonWriter::one_decimal(double value) {
    literal(nlohmann::json(std::round(value * 10) / 10).dump());
}

void JsonWriter::literal(std::string_view json) {
    separate();
    json_ += json;
}

void JsonWriter::begin(char bracket) {
    separate();
    json_ += bracket;
    needs_comma_ = false;
}

void JsonWriter::end(char bracket) {
    json_ += bracket;
    needs_comma_ = true;
}

/// Writes the comma before a value if one is needed.
void JsonWriter::separate() {
    if (needs_comma_) {
        json_ += ',';
    }
    needs_comma_ = true;
}

} // namespace lumo::library
