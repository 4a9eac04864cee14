// Measuring the shape of a state: zones, layers, key range, stacking.
#include "list_values.h"
#include <lumo/exs.h>

#include <gtest/gtest.h>

#include <cstddef>

namespace {

using namespace lumo::test;
using lumo::exs::describe;
using lumo::exs::Shape;

using Entries = std::vector<std::pair<std::string, Value>>;

Value layer(const std::vector<Value>& zones, Entries entries = {}) {
    entries.emplace_back("Zones", array(zones));
    return dictionary(entries);
}

Value zone(int low_key, int high_key, int low_velocity = 0, int high_velocity = 127) {
    return dictionary({{"min key", whole(low_key)},
                       {"max key", whole(high_key)},
                       {"min vel", whole(low_velocity)},
                       {"max vel", whole(high_velocity)}});
}

Value full_zone() {
    return dictionary({});
}

Shape shape_of(const std::vector<Value>& layers) {
    return describe(dictionary({{"Instrument", dictionary({{"Layers", array(layers)}})}}).get());
}

void expect_default(const Shape& shape) {
    EXPECT_TRUE(shape.layers.empty());
    EXPECT_EQ(shape.zones, 0);
    EXPECT_EQ(shape.max_stack, 1);
    EXPECT_EQ(shape.stacked_percent, 0.0);
    EXPECT_EQ(shape.lowest_key, 127);
    EXPECT_EQ(shape.highest_key, 0);
}

TEST(Shape, IsTheDefaultWithoutAnInstrument) {
    expect_default(describe(dictionary({}).get()));
    expect_default(describe(dictionary({{"Instrument", text("Piano")}}).get()));
}

TEST(Shape, IsTheDefaultWithoutLayers) {
    expect_default(describe(dictionary({{"Instrument", dictionary({})}}).get()));
    expect_default(
        describe(dictionary({{"Instrument", dictionary({{"Layers", dictionary({})}})}}).get()));
    expect_default(shape_of({}));
}

TEST(Shape, RecordsALayerWithoutZones) {
    const Shape shape = shape_of({dictionary({}), dictionary({{"Zones", text("none")}})});
    ASSERT_EQ(shape.layers.size(), 2U);
    EXPECT_EQ(shape.layers[0].zones, 0);
    EXPECT_EQ(shape.layers[0].looped_zones, 0);
    EXPECT_EQ(shape.zones, 0);
    EXPECT_EQ(shape.lowest_key, 127);
    EXPECT_EQ(shape.highest_key, 0);
}

TEST(Shape, KeepsTheOrderAndNamesOfItsLayers) {
    const Shape shape = shape_of({layer({full_zone()}, {{"name", text("Caf\xc3\xa9")}}), layer({}),
                                  layer({full_zone(), full_zone()}, {{"name", whole(3)}})});
    ASSERT_EQ(shape.layers.size(), 3U);
    EXPECT_EQ(shape.layers[0].name, "Caf\xc3\xa9");
    EXPECT_EQ(shape.layers[0].zones, 1);
    EXPECT_EQ(shape.layers[1].name, "");
    EXPECT_EQ(shape.layers[1].zones, 0);
    EXPECT_EQ(shape.layers[2].name, "");
    EXPECT_EQ(shape.layers[2].zones, 2);
    EXPECT_EQ(shape.zones, 3);
}

TEST(Shape, OfAZoneWithoutKeysCoversEverything) {
    const Shape shape = shape_of({layer({full_zone()})});
    EXPECT_EQ(shape.max_stack, 1);
    EXPECT_EQ(shape.stacked_percent, 0.0);
    EXPECT_EQ(shape.lowest_key, 0);
    EXPECT_EQ(shape.highest_key, 127);
}

TEST(Shape, CountsADisabledZoneThatCoversNothing) {
    const Shape shape = shape_of(
        {layer({dictionary({{"enabled", boolean(false)}, {"loop enabled", boolean(true)}})})});
    EXPECT_EQ(shape.zones, 1);
    EXPECT_EQ(shape.layers[0].looped_zones, 1);
    EXPECT_EQ(shape.lowest_key, 127);
    EXPECT_EQ(shape.highest_key, 0);
}

TEST(Shape, TakesAZoneWhoseEnablingIsATextAsEnabled) {
    const Shape shape = shape_of({layer({dictionary({{"enabled", text("no")}})})});
    EXPECT_EQ(shape.highest_key, 127);
}

TEST(Shape, DoesNotStackZonesOfOneLayer) {
    const Shape shape = shape_of({layer({full_zone(), full_zone()})});
    EXPECT_EQ(shape.max_stack, 1);
    EXPECT_EQ(shape.stacked_percent, 0.0);
}

TEST(Shape, StacksTwoLayers) {
    const Shape shape = shape_of({layer({full_zone()}), layer({full_zone()})});
    EXPECT_EQ(shape.max_stack, 2);
    EXPECT_EQ(shape.stacked_percent, 100.0);
}

TEST(Shape, OfHalfOverlappingLayersIsStackedByAThird) {
    const Shape shape = shape_of({layer({zone(0, 63)}), layer({zone(32, 95)})});
    EXPECT_EQ(shape.max_stack, 2);
    EXPECT_DOUBLE_EQ(shape.stacked_percent, 2048 * 100.0 / 6144);
    EXPECT_EQ(shape.lowest_key, 0);
    EXPECT_EQ(shape.highest_key, 95);
}

TEST(Shape, CountsAsManyLayersAsThereAre) {
    for (const int count : {3, 15, 16, 17, 31, 100}) {
        std::vector<Value> layers(static_cast<std::size_t>(count), layer({zone(60, 61)}));
        layers.push_back(layer({zone(61, 62)}));
        const Shape shape = shape_of(layers);
        EXPECT_EQ(shape.max_stack, count + 1);
        EXPECT_DOUBLE_EQ(shape.stacked_percent, 2 * 100.0 / 3);
        for (const int key : {0, 127}) {
            for (const int velocity : {1, 127}) {
                layers.assign(layers.size(), layer({zone(key, key, velocity, velocity)}));
                EXPECT_EQ(shape_of(layers).max_stack, count + 1) << key << ' ' << velocity;
            }
        }
    }
}

TEST(Shape, LeavesALayerThatAControllerChoosesOutOfTheStack) {
    for (const int controller : {0, 64}) {
        const Shape shape = shape_of(
            {layer({zone(10, 20)}, {{"sel ctrlr", whole(controller)}}), layer({zone(15, 18)})});
        EXPECT_TRUE(shape.layers[0].controller_chosen);
        EXPECT_FALSE(shape.layers[1].controller_chosen);
        EXPECT_EQ(shape.max_stack, 1);
        EXPECT_EQ(shape.stacked_percent, 0.0);
        EXPECT_EQ(shape.lowest_key, 10);
        EXPECT_EQ(shape.highest_key, 20);
    }
}

TEST(Shape, LeavesALayerThatSoundsOnReleaseOutOfTheStack) {
    const Shape shape =
        shape_of({layer({zone(15, 18)}), layer({zone(10, 20)}, {{"trigger mode", whole(12)}})});
    EXPECT_FALSE(shape.layers[0].on_release);
    EXPECT_TRUE(shape.layers[1].on_release);
    EXPECT_EQ(shape.max_stack, 1);
    EXPECT_EQ(shape.stacked_percent, 0.0);
    EXPECT_EQ(shape.lowest_key, 10);
    EXPECT_EQ(shape.highest_key, 20);
}

TEST(Shape, StacksALayerWithControllerMinusOneOrAnotherTriggerMode) {
    const Shape shape = shape_of({layer({full_zone()}, {{"sel ctrlr", whole(-1)}}),
                                  layer({full_zone()}, {{"trigger mode", whole(11)}})});
    EXPECT_FALSE(shape.layers[0].controller_chosen);
    EXPECT_FALSE(shape.layers[1].on_release);
    EXPECT_EQ(shape.max_stack, 2);
}

TEST(Shape, TakesVelocityZeroAsOne) {
    EXPECT_EQ(shape_of({layer({zone(60, 60, 0, 0)})}).highest_key, 0);
    EXPECT_EQ(shape_of({layer({zone(60, 60, 0, 1)})}).highest_key, 60);
}

TEST(Shape, StacksVelocitiesTwoByTwo) {
    EXPECT_EQ(shape_of({layer({zone(0, 0, 2, 2)}), layer({zone(0, 0, 3, 3)})}).max_stack, 2);
    EXPECT_EQ(shape_of({layer({zone(0, 0, 3, 3)}), layer({zone(0, 0, 4, 4)})}).max_stack, 1);
}

TEST(Shape, KeepsKeysAndVelocitiesInTheirRange) {
    const Shape shape = shape_of({layer({zone(-5, 3, -1, 500)}), layer({zone(120, 200)})});
    EXPECT_EQ(shape.lowest_key, 0);
    EXPECT_EQ(shape.highest_key, 127);
    EXPECT_EQ(shape_of({layer({zone(128, 200)})}).highest_key, 0);
    EXPECT_EQ(shape_of({layer({zone(-9, -1)})}).lowest_key, 127);
}

TEST(Shape, CountsAZoneWithAnEmptyRangeThatCoversNothing) {
    const Shape shape = shape_of({layer({zone(60, 59), zone(60, 60, 80, 79)})});
    EXPECT_EQ(shape.zones, 2);
    EXPECT_EQ(shape.lowest_key, 127);
    EXPECT_EQ(shape.highest_key, 0);
}

TEST(Shape, ReadsBooleansAsOneAndZero) {
    const Value up_to_one = dictionary({{"max vel", boolean(true)}, {"max key", whole(0)}});
    EXPECT_EQ(shape_of({layer({up_to_one}), layer({zone(0, 0, 1, 1)})}).max_stack, 2);
    EXPECT_EQ(shape_of({layer({up_to_one}), layer({zone(0, 0, 2, 127)})}).max_stack, 1);
    const Shape shape = shape_of({layer({dictionary({{"min key", boolean(true)}})})});
    EXPECT_EQ(shape.lowest_key, 1);
}

TEST(Shape, ReadsNumbersWithAFractionAsWholeOnes) {
    const Shape shape =
        shape_of({layer({dictionary({{"min key", real(10.9)}, {"max key", real(20.9)}})})});
    EXPECT_EQ(shape.lowest_key, 10);
    EXPECT_EQ(shape.highest_key, 20);
}

TEST(Shape, PassesOverLayersAndZonesThatAreNoDictionaries) {
    const Shape shape = shape_of({text("layer"), layer({whole(1), zone(5, 6), array({})})});
    ASSERT_EQ(shape.layers.size(), 1U);
    EXPECT_EQ(shape.zones, 1);
    EXPECT_EQ(shape.lowest_key, 5);
    EXPECT_EQ(shape.highest_key, 6);
}

} // namespace
