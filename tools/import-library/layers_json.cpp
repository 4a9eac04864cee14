// A layer is a list: its name, 1 if a controller selects it plus 2 if it sounds on key release, the
// numbers of zones and of looped ones, and its areas.
#include "layers_json.h"

#include <algorithm>
#include <optional>
#include <tuple>
#include <vector>

namespace lumo::library {
namespace {

/// Writes the areas of a layer as four numbers each. Zones with the same area are shown as one.
void write_areas(JsonWriter& json, std::vector<exs::KeyArea> areas) {
    const auto corners = [](const exs::KeyArea& area) {
        return std::tie(area.low_key, area.high_key, area.low_velocity, area.high_velocity);
    };
    std::sort(areas.begin(), areas.end(),
              [&](const auto& one, const auto& other) { return corners(one) < corners(other); });
    areas.erase(std::unique(areas.begin(), areas.end()), areas.end());
    json.list(areas, [&](const exs::KeyArea& area) {
        json.number(area.low_key);
        json.number(area.high_key);
        json.number(area.low_velocity);
        json.number(area.high_velocity);
    });
}

/// Writes a layer; `areas` is null when its state could not be read.
void write_layer(JsonWriter& json, const exs::Shape::Layer& layer,
                 const std::vector<exs::KeyArea>* areas) {
    json.begin_list();
    json.text(layer.name);
    json.number((layer.controller_chosen ? 1 : 0) + (layer.on_release ? 2 : 0));
    json.number(layer.zones);
    json.number(layer.looped_zones);
    if (areas) {
        write_areas(json, *areas);
    } else {
        json.literal("null");
    }
    json.end_list();
}

} // namespace

void write_layers(JsonWriter& json, const Report& report) {
    const auto layers =
        report.state_file.empty() ? std::nullopt : exs::key_areas_of_file(report.state_file);
    if (layers) {
        json.list(*layers, [&](const exs::LayerAreas& layer) {
            write_layer(json, layer.layer, &layer.areas);
        });
    } else {
        json.list(report.shape.layers,
                  [&](const exs::Shape::Layer& layer) { write_layer(json, layer, nullptr); });
    }
}

} // namespace lumo::library
