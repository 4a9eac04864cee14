// The page is page/page.html with the styles, the script and the data inserted. The data are
// compact JSON: a path is a folder's number and a name, and an instrument is a list; page/page.js
// names its elements.
#include "page.h"

#include "page_files.h"
#include "text.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>
#include <system_error>
#include <tuple>

namespace lumo::library {
namespace {

using Json = nlohmann::json;

/// The displayed form of `bytes` as a JSON string.
std::string json_text(std::string_view bytes) {
    return Json(shown(bytes)).dump();
}

/// A JSON array of the results of `write` for each element.
template <typename List, typename Write>
std::string list_of(const List& list, Write write) {
    std::string text = "[";
    for (const auto& element : list) {
        text += text.size() > 1 ? "," : "";
        text += write(element);
    }
    return text + ']';
}

/// The areas of a layer as four numbers each. Zones with the same area are shown as one.
std::string areas_of(std::vector<exs::KeyArea> areas) {
    const auto corners = [](const exs::KeyArea& area) {
        return std::tie(area.low_key, area.high_key, area.low_velocity, area.high_velocity);
    };
    std::sort(areas.begin(), areas.end(),
              [&](const auto& one, const auto& other) { return corners(one) < corners(other); });
    areas.erase(std::unique(areas.begin(), areas.end()), areas.end());
    return list_of(areas, [](const exs::KeyArea& area) {
        return std::to_string(area.low_key) + ',' + std::to_string(area.high_key) + ',' +
               std::to_string(area.low_velocity) + ',' + std::to_string(area.high_velocity);
    });
}

std::string layer_of(const exs::Shape::Layer& layer, const std::string& areas) {
    const int marks = (layer.controller_chosen ? 1 : 0) + (layer.on_release ? 2 : 0);
    return '[' + json_text(layer.name) + ',' + std::to_string(marks) + ',' +
           std::to_string(layer.zones) + ',' + std::to_string(layer.looped_zones) + ',' + areas +
           ']';
}

/// The layers, with their areas if the state can be read.
std::string layers_of(const Report& report) {
    const auto layers =
        report.state_file.empty() ? std::nullopt : exs::key_areas_of_file(report.state_file);
    if (!layers) {
        return list_of(report.shape.layers,
                       [](const exs::Shape::Layer& layer) { return layer_of(layer, "null"); });
    }
    return list_of(*layers, [](const exs::LayerAreas& layer) {
        return layer_of(layer.layer, areas_of(layer.areas));
    });
}

/// The keys of a map from texts to 0, 1, 2 and so on, ordered by their numbers.
std::vector<std::string> in_order(const std::map<std::string, std::size_t, std::less<>>& numbers) {
    std::vector<std::string> texts(numbers.size());
    for (const auto& [text, number] : numbers) {
        texts[number] = text;
    }
    return texts;
}

std::string one_decimal(double value) {
    return Json(std::round(value * 10) / 10).dump();
}

/// Replaces `mark`, which occurs once in `text`, with `value`.
void put_in(std::string& text, std::string_view mark, const std::string& value) {
    text.replace(text.find(mark), mark.size(), value);
}

} // namespace

std::size_t Page::folder_number(std::string_view folder) {
    const auto found = folders_.find(folder);
    return found != folders_.end() ? found->second
                                   : folders_.emplace(folder, folders_.size()).first->second;
}

std::size_t Page::cause_number(const Cause& cause) {
    return causes_.emplace(cause.text, causes_.size()).first->second;
}

std::string Page::path(std::string_view bytes) {
    const std::size_t name = bytes.rfind('/') + 1; // npos + 1 is 0
    return std::to_string(folder_number(bytes.substr(0, name))) + ',' +
           json_text(bytes.substr(name));
}

std::string Page::paths(const std::vector<std::string>& list) {
    return list_of(list, [&](const std::string& bytes) { return path(bytes); });
}

/// Each sample that was found elsewhere: recorded folder and name, and those of the file; 0 for an
/// equal name.
std::string Page::relinked(const Report& report) {
    return list_of(report.relinked, [&](const std::pair<std::string, std::string>& sample) {
        const std::string from = path(sample.first);
        const std::string to = path(sample.second);
        const std::size_t comma = to.find(',');
        const bool is_same_name = from.substr(from.find(',')) == to.substr(comma);
        return from + ',' + (is_same_name ? to.substr(0, comma) + ",0" : to);
    });
}

void Page::add(const Report& report) {
    const std::string cause =
        report.ok ? "-1" : std::to_string(cause_number(cause_of(report.error)));
    const exs::Shape& shape = report.shape;
    // The elements of an initializer list are evaluated in order, so the numbers of folders do not
    // depend on the compiler.
    const std::vector<std::string> values = {json_text(report.name),
                                             path(report.source),
                                             cause,
                                             json_text(report.error),
                                             std::to_string(report.samples),
                                             std::to_string(report.sample_bytes),
                                             std::to_string(report.copied_bytes),
                                             path(report.state_file),
                                             one_decimal(report.load_ms),
                                             std::to_string(shape.zones),
                                             std::to_string(shape.max_stack),
                                             one_decimal(shape.stacked_percent),
                                             std::to_string(shape.lowest_key),
                                             std::to_string(shape.highest_key),
                                             layers_of(report),
                                             relinked(report),
                                             paths(report.unresolved),
                                             paths(report.apple_library)};
    instruments_ += instruments_.empty() ? "" : ",\n";
    instruments_ += list_of(values, [](const std::string& value) { return value; });
}

std::string Page::html(const Tally& tally, const PageHead& head) const {
    const SummaryNotes& notes = head.notes;
    std::vector<CauseCount> causes(causes_.size());
    for (const CauseCount& count : tally.causes()) {
        causes[causes_.find(count.cause.text)->second] = count;
    }
    std::string data = "{\"package\":" + json_text(head.package) +
                       ",\"made\":" + json_text(head.made) +
                       ",\"samples\":" + std::to_string(tally.samples) +
                       ",\"copied\":" + std::to_string(tally.copied_bytes) +
                       ",\"seconds\":" + (notes.seconds ? one_decimal(*notes.seconds) : "null") +
                       ",\"before\":" + std::to_string(notes.already_imported) +
                       ",\"left\":" + std::to_string(notes.left) +
                       ",\"unreadable\":" + std::to_string(notes.unreadable) + ",\"causes\":";
    data += list_of(causes, [](const CauseCount& count) {
        return '[' + json_text(count.cause.text) + ',' + json_text(count.cause.remedy) + ',' +
               std::to_string(count.failures) + ']';
    });
    data +=
        ",\n\"missing\":" + list_of(tally.missing(), [](const MissingSamples& missing) {
            return '[' + json_text(missing.folder) + ',' + std::to_string(missing.samples) + ']';
        });
    data += ",\n\"folders\":" + list_of(in_order(folders_), json_text);
    data += ",\n\"instruments\":[" + instruments_ + "]}";
    std::string text(page_html);
    put_in(text, "{styles}", std::string(page_css));
    put_in(text, "{script}", std::string(page_js));
    // Without "<" the data cannot end the element.
    std::string safe;
    safe.reserve(data.size());
    for (const char c : data) {
        safe += c == '<' ? "\\u003c" : std::string_view(&c, 1);
    }
    put_in(text, "{data}", safe);
    return text;
}

std::string write_page(const std::string& path, const std::string& html) {
    std::error_code error;
    const auto there = std::filesystem::status(path, error);
    const bool is_device = std::filesystem::exists(there) && !is_regular_file(there);
    const std::string written = is_device ? path : path + ".part";
    std::ofstream file(written, std::ios::binary | std::ios::trunc);
    file.write(html.data(), static_cast<std::streamsize>(html.size()));
    file.close();
    if (!file.fail() && (is_device || std::rename(written.c_str(), path.c_str()) == 0)) {
        return {};
    }
    std::string reason = std::strerror(errno);
    if (!is_device) {
        std::remove(written.c_str());
    }
    return reason;
}

} // namespace lumo::library
