// Where the layers of a state sound.
#include "list_values.h"
#include "preset_file.h"
#include "property_list.h"
#include "support/temp_folder.h"
#include <lumo/state.h>

#include <gtest/gtest.h>

namespace {

using namespace lumo::test;
using lumo::exs::key_areas;
using lumo::exs::KeyArea;
using lumo::exs::LayerAreas;

using Entries = std::vector<std::pair<std::string, Value>>;

Value limits(int low_key, int high_key, int low_velocity, int high_velocity, Entries more = {}) {
    more.insert(more.end(), {{"min key", whole(low_key)},
                             {"max key", whole(high_key)},
                             {"min vel", whole(low_velocity)},
                             {"max vel", whole(high_velocity)}});
    return dictionary(more);
}

Value state_of(const std::vector<Value>& layers) {
    return dictionary({{"Instrument", dictionary({{"Layers", array(layers)}})}});
}

std::vector<LayerAreas> areas_of(const std::vector<Value>& layers) {
    return key_areas(state_of(layers).get());
}

TEST(KeyAreas, AreThoseOfTheZonesInOrder) {
    const auto layers =
        areas_of({dictionary({{"name", text("Low")},
                              {"Zones", array({limits(60, 71, 1, 127), limits(36, 59, 1, 64)})}})});
    ASSERT_EQ(layers.size(), 1U);
    EXPECT_EQ(layers[0].layer.name, "Low");
    EXPECT_EQ(layers[0].layer.zones, 2);
    EXPECT_EQ(layers[0].areas, (std::vector<KeyArea>{{60, 71, 1, 127}, {36, 59, 1, 64}}));
}

TEST(KeyAreas, HaveTheDefaultsAndBoundsOfTheShape) {
    const auto layers =
        areas_of({dictionary({{"Zones", array({dictionary({}), limits(-5, 200, 0, 300)})}})});
    ASSERT_EQ(layers.size(), 1U);
    EXPECT_EQ(layers[0].areas, (std::vector<KeyArea>{{0, 127, 1, 127}, {0, 127, 1, 127}}));
}

TEST(KeyAreas, AreCutToTheLimitsOfTheLayer) {
    const auto layers =
        areas_of({limits(40, 80, 20, 90,
                         {{"Zones", array({limits(0, 127, 1, 127), limits(50, 60, 30, 40),
                                           limits(0, 39, 1, 127), limits(40, 50, 91, 127)})}})});
    ASSERT_EQ(layers.size(), 1U);
    EXPECT_EQ(layers[0].layer.zones, 4);
    EXPECT_EQ(layers[0].areas, (std::vector<KeyArea>{{40, 80, 20, 90}, {50, 60, 30, 40}}));
}

TEST(KeyAreas, MayBeOneKeyAndOneVelocity) {
    const auto layers = areas_of({limits(
        40, 80, 20, 90,
        {{"Zones", array({limits(0, 40, 1, 20), limits(80, 127, 90, 127), limits(50, 50, 30, 30),
                          limits(0, 127, 1, 19), limits(81, 127, 1, 127)})}})});
    ASSERT_EQ(layers.size(), 1U);
    EXPECT_EQ(layers[0].areas,
              (std::vector<KeyArea>{{40, 40, 20, 20}, {80, 80, 90, 90}, {50, 50, 30, 30}}));
}

TEST(KeyAreas, AreAbsentForZonesThatCannotSound) {
    const auto layers =
        areas_of({dictionary({{"Zones", array({dictionary({{"enabled", boolean(false)}}),
                                               limits(60, 59, 1, 127), text("none")})}}),
                  limits(60, 59, 1, 127, {{"Zones", array({dictionary({})})}})});
    ASSERT_EQ(layers.size(), 2U);
    EXPECT_TRUE(layers[0].areas.empty());
    EXPECT_EQ(layers[0].layer.zones, 2);
    EXPECT_TRUE(layers[1].areas.empty());
}

TEST(KeyAreas, KnowWhichLayersDoNotSoundOnEveryNote) {
    const auto layers = areas_of({dictionary({{"trigger mode", whole(12)}}),
                                  dictionary({{"sel ctrlr", whole(0)}}), dictionary({})});
    ASSERT_EQ(layers.size(), 3U);
    EXPECT_TRUE(layers[0].layer.on_release);
    EXPECT_TRUE(layers[1].layer.controller_chosen);
    EXPECT_FALSE(layers[2].layer.on_release || layers[2].layer.controller_chosen);
}

TEST(KeyAreas, CoverEverythingByDefault) {
    EXPECT_EQ(KeyArea(), (KeyArea{0, 127, 1, 127}));
}

TEST(KeyAreas, AreNoneWithoutAnInstrument) {
    EXPECT_TRUE(key_areas(dictionary({}).get()).empty());
}

TEST(KeyAreas, AreReadFromAFile) {
    const TempFolder folder;
    const std::string path = folder / "a.aupreset";
    EXPECT_FALSE(lumo::exs::key_areas_of_file(path));
    write_file(path, "no list");
    EXPECT_FALSE(lumo::exs::key_areas_of_file(path));
    const Value state = state_of({dictionary({{"Zones", array({limits(1, 2, 3, 4)})}})});
    ASSERT_TRUE(lumo::exs::write_plist(state.get(), path));
    const auto layers = lumo::exs::key_areas_of_file(path);
    ASSERT_TRUE(layers);
    ASSERT_EQ(layers->size(), 1U);
    EXPECT_EQ((*layers)[0].areas, (std::vector<KeyArea>{{1, 2, 3, 4}}));
}

} // namespace
