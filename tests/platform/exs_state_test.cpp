// The state that an EXS24 instrument becomes, value by value.
#include "platform/exs_states.h"

#include <gtest/gtest.h>

namespace lumo::test {
namespace {

/// The first zone of an instrument with one sample of 1000 frames.
StatePaths with_zone(const ExsZoneFields& fields) {
    return state_of(ExsBuilder().zone(fields).sample({.frames = 1000}));
}

TEST(ExsState, InstrumentIsNamedAfterItsFile) {
    EXPECT_EQ(value(state_of(ExsBuilder()), "name"), StateEntry("Pad.exs"));
}

TEST(ExsState, PolyphonyIsTheVoiceCount) {
    EXPECT_EQ(value(state_of(ExsBuilder()), "voice count"), number(16));
    EXPECT_EQ(value(state_of(ExsBuilder().parameters({{5, 6}})), "voice count"), number(6));
}

TEST(ExsState, OutputVolumeIsTheGainAndLeftOutAtZero) {
    EXPECT_EQ(value(state_of(ExsBuilder().parameters({{7, -6}})), "gain"), number(-6));
    EXPECT_EQ(value(state_of(ExsBuilder().parameters({{7, 0}})), "gain"), absent);
}

TEST(ExsState, LfosTwoAndThreeAreTheInstruments) {
    const StatePaths state = state_of(ExsBuilder().parameters({{63, 110}, {167, 86}}));
    EXPECT_EQ(value(state, "LFOs/240/rate"), number(9.6F));
    EXPECT_EQ(value(state, "LFOs/240/enabled"), yes);
    EXPECT_EQ(value(state, "LFOs/241/rate"), number(2.4F));
}

TEST(ExsState, InstrumentsLfoThatStandsStillIsLeftOut) {
    const StatePaths one = state_of(ExsBuilder().parameters({{63, 34}}));
    EXPECT_EQ(keys_below(one, "LFOs"),
              (std::vector<std::string>{"241/ID", "241/enabled", "241/rate"}));
    EXPECT_EQ(value(state_of(ExsBuilder().parameters({{63, 34}, {167, 34}})), "LFOs"),
              StateEntry("[]"));
}

TEST(ExsState, LayersLfoKeepsItsPlaceWithoutARateWhenItStandsStill) {
    const StatePaths state = state_of(ExsBuilder().parameters({{61, 34}}));
    EXPECT_EQ(keys_below(state, "Layers/0/LFOs"),
              (std::vector<std::string>{"0/ID", "0/delay", "0/enabled"}));
    EXPECT_EQ(value(state_of(ExsBuilder()), "Layers/0/LFOs/0/rate"), number(4.8F));
}

TEST(ExsState, LayerHasAllThePartsOfOne) {
    const StatePaths state = state_of(ExsBuilder());
    EXPECT_EQ(value(state, "Layers/0/ID"), number(0));
    for (const char* part : {"Amplifier", "Oscillator"}) {
        const std::string path = std::string("Layers/0/") + part;
        EXPECT_EQ(keys_below(state, path), (std::vector<std::string>{"ID", "enabled"}));
        EXPECT_EQ(value(state, path + "/enabled"), yes);
    }
    EXPECT_EQ(keys_below(state, "Layers/0/Filters"),
              (std::vector<std::string>{"ID", "cutoff", "enabled", "resonance"}));
    EXPECT_EQ(value(state, "Layers/0/Filters/cutoff"), number(20000));
    EXPECT_EQ(value(state, "Layers/0/Filters/enabled"), no);
    EXPECT_EQ(value(state, "Layers/0/Zones"), StateEntry("[]"));
    EXPECT_EQ(value(state, "Layers/0/name"), absent);
}

TEST(ExsState, FilterIsOnByItsSwitch) {
    const StatePaths state = state_of(ExsBuilder().parameters({{44, 1}, {30, 434}, {29, 991}}));
    EXPECT_EQ(value(state, "Layers/0/Filters/enabled"), yes);
    EXPECT_EQ(value(state, "Layers/0/Filters/cutoff"), number(405.04214477539062));
    EXPECT_EQ(value(state, "Layers/0/Filters/resonance"), number(39.640003204345703));
}

TEST(ExsState, EnvelopesHaveSevenStages) {
    const StatePaths state = state_of(ExsBuilder().parameters({{81, 92}, {85, 72}, {82, 127}}));
    const std::string amp = "Layers/0/Envelopes/0/Stages/";
    const int curves[] = {20, 22, 20, 20, 0, 20, 20};
    for (int stage = 0; stage < 7; ++stage) {
        const std::string path = amp + std::to_string(stage);
        EXPECT_EQ(value(state, path + "/stage"), number(stage));
        EXPECT_EQ(value(state, path + "/curve"), stage == 4 ? absent : number(curves[stage]));
    }
    EXPECT_EQ(value(state, amp + "0/time"), number(0));
    EXPECT_EQ(value(state, amp + "1/time"), number(10));
    EXPECT_EQ(value(state, amp + "2/time"), number(0));
    EXPECT_EQ(value(state, amp + "4/level"), number(92.0F / 127.0F));
    EXPECT_EQ(value(state, amp + "4/time"), absent);
    EXPECT_EQ(value(state, amp + "5/time"), number(4.1321415901184082));
    EXPECT_EQ(value(state, amp + "6/time"), number(0.004999999888241291));
    EXPECT_EQ(value(state, "Layers/0/Envelopes/1/Stages/1/curve"), number(20));
    EXPECT_EQ(value(state, "Layers/0/Envelopes/1/Stages/4/level"), number(0));
    EXPECT_EQ(value(state, "Layers/0/Envelopes/1/enabled"), yes);
}

TEST(ExsState, ConnectionIsAScaleOrARange) {
    const StatePaths state = state_of(ExsBuilder());
    EXPECT_EQ(keys_below(state, "Layers/0/Connections/0"),
              (std::vector<std::string>{"ID", "control", "destination", "enabled", "inverse",
                                        "scale", "source", "transform"}));
    EXPECT_EQ(keys_below(state, "Layers/0/Connections/4"),
              (std::vector<std::string>{"ID", "control", "destination", "enabled", "inverse",
                                        "max value", "min value", "source", "transform"}));
    EXPECT_EQ(value(state, "Layers/0/Connections/1/transform"), number(2));
    EXPECT_EQ(value(state, "Layers/0/Connections/1/inverse"), yes);
}

TEST(ExsState, PlainZoneHasOnlyWhatIsAlwaysWritten) {
    const StatePaths state = with_zone({.name = "Zone #1", .root_key = 57});
    EXPECT_EQ(keys_below(state, first_zone),
              (std::vector<std::string>{"ID", "enabled", "loop enabled", "name", "root key",
                                        "waveform"}));
    EXPECT_EQ(value(state, first_zone + "/ID"), number(0));
    EXPECT_EQ(value(state, first_zone + "/enabled"), yes);
    EXPECT_EQ(value(state, first_zone + "/loop enabled"), no);
    EXPECT_EQ(value(state, first_zone + "/name"), StateEntry("Zone #1"));
    EXPECT_EQ(value(state, first_zone + "/root key"), number(57));
    EXPECT_EQ(value(state, first_zone + "/waveform"), number(268435456));
}

TEST(ExsState, ZonesKeysAndVelocitiesAreWrittenUnlessFull) {
    const StatePaths state = with_zone(
        {.options = 8, .low_key = 0, .high_key = 51, .low_velocity = 74, .high_velocity = 104});
    EXPECT_EQ(value(state, first_zone + "/min key"), number(0));
    EXPECT_EQ(value(state, first_zone + "/max key"), number(51));
    EXPECT_EQ(value(state, first_zone + "/min vel"), number(74));
    EXPECT_EQ(value(state, first_zone + "/max vel"), number(104));
}

TEST(ExsState, ZonesVolumeAndFineTuneAreWrittenUnlessZero) {
    const StatePaths state = with_zone({.fine_tune = -12, .volume = -9});
    EXPECT_EQ(value(state, first_zone + "/gain"), number(-9));
    EXPECT_EQ(value(state, first_zone + "/fine tune"), number(-12));
}

TEST(ExsState, ZoneThatDoesNotFollowTheKeysSaysSo) {
    EXPECT_EQ(value(with_zone({.options = 2}), first_zone + "/pitch tracking"), no);
    EXPECT_EQ(value(with_zone({.options = 1}), first_zone + "/pitch tracking"), absent);
}

TEST(ExsState, MutedZoneIsNotEnabled) {
    EXPECT_EQ(value(with_zone({.options = 16}), first_zone + "/enabled"), no);
}

TEST(ExsState, LoopOverTheWholeSampleIsNotWritten) {
    const StatePaths state = with_zone({.loop_start = 0, .loop_end = 1000, .loop_options = 1});
    EXPECT_EQ(value(state, first_zone + "/loop enabled"), yes);
    EXPECT_EQ(value(state, first_zone + "/loop start"), absent);
    EXPECT_EQ(value(state, first_zone + "/loop end"), absent);
}

TEST(ExsState, LoopToTheSamplesEndHasAStartOnly) {
    for (const std::int32_t end : {1000, 1001, 0x7FFFFFFF}) {
        const StatePaths state = with_zone({.loop_start = 200, .loop_end = end});
        EXPECT_EQ(value(state, first_zone + "/loop start"), number(200)) << end;
        EXPECT_EQ(value(state, first_zone + "/loop end"), absent) << end;
    }
}

TEST(ExsState, LoopThatEndsEarlierHasBoth) {
    const StatePaths inner = with_zone({.loop_start = 200, .loop_end = 900});
    EXPECT_EQ(value(inner, first_zone + "/loop start"), number(200));
    EXPECT_EQ(value(inner, first_zone + "/loop end"), number(900));
    const StatePaths front = with_zone({.loop_start = 0, .loop_end = 900});
    EXPECT_EQ(value(front, first_zone + "/loop start"), number(0));
    EXPECT_EQ(value(front, first_zone + "/loop end"), number(900));
}

TEST(ExsState, LoopThatCannotBeIsTakenForTheWholeSample) {
    const std::pair<std::int32_t, std::int32_t> loops[] = {{0, 0},     {-1, 900},    {500, 500},
                                                           {900, 200}, {1000, 1200}, {0, -1}};
    for (const auto& [start, end] : loops) {
        const StatePaths state = with_zone({.loop_start = start, .loop_end = end});
        EXPECT_EQ(value(state, first_zone + "/loop start"), absent) << start << ' ' << end;
        EXPECT_EQ(value(state, first_zone + "/loop end"), absent) << start << ' ' << end;
    }
}

TEST(ExsState, LoopEndIsWrittenWhereTheSamplesLengthIsUnknown) {
    const StatePaths state =
        state_of(ExsBuilder().zone({.sample_end = 500, .loop_end = 500}).sample({.frames = 0}));
    EXPECT_EQ(value(state, first_zone + "/loop start"), number(0));
    EXPECT_EQ(value(state, first_zone + "/loop end"), number(500));
}

TEST(ExsState, WaveformsAreNumberedByTheSamplesChunksUsedOrNot) {
    const StatePaths state = state_of(ExsBuilder()
                                          .zone({.low_key = 10, .sample = 3})
                                          .zone({.low_key = 0, .sample = 1})
                                          .sample({})
                                          .sample({})
                                          .sample({})
                                          .sample({}));
    EXPECT_EQ(value(state, "Layers/0/Zones/0/waveform"), number(268435457));
    EXPECT_EQ(value(state, "Layers/0/Zones/1/waveform"), number(268435459));
}

TEST(ExsState, GroupIsALayerOfItsName) {
    const StatePaths state = state_of(ExsBuilder()
                                          .zone({.group = 1})
                                          .zone({})
                                          .group({.name = "unused"})
                                          .group({.name = "Strings"})
                                          .sample({}));
    EXPECT_EQ(value(state, "Layers/0/name"), absent);
    EXPECT_EQ(value(state, "Layers/1/name"), StateEntry("Strings"));
    EXPECT_EQ(value(state, "Layers/1/ID"), number(1));
    EXPECT_EQ(value(state, "Layers/1/Zones/0/ID"), number(0));
    EXPECT_EQ(value(state, "Layers/2/ID"), absent);
    for (const char* key : {"gain", "trigger mode", "sel ctrlr"}) {
        EXPECT_EQ(value(state, std::string("Layers/1/") + key), absent) << key;
    }
}

TEST(ExsState, ConnectionsNameTheirLayer) {
    const StatePaths state =
        state_of(ExsBuilder()
                     .zone({.group = 0})
                     .zone({.group = 1})
                     .group({})
                     .group({})
                     .sample({})
                     .parameters({{185, 8}, {186, 1}, {187, -14}, {188, 100}, {189, 200}}));
    const std::string second = "Layers/1/Connections/";
    EXPECT_EQ(value(state, second + "0/source"), number(300));
    EXPECT_EQ(value(state, second + "0/destination"), number(816840960));
    EXPECT_EQ(value(state, second + "5/source"), number(0x20000100));
    EXPECT_EQ(value(state, second + "8/source"), number(0x10000100));
    EXPECT_EQ(value(state, second + "8/control"), number(1));
    EXPECT_EQ(value(state, second + "9/control"), number(0x20000101));
    EXPECT_EQ(value(state, "Layers/0/Connections/5/source"), number(0x20000000));
}

TEST(ExsState, MoreLayersThanTheConnectionsCanNameAreRefused) {
    const auto with_layers = [](int count) {
        ExsBuilder builder;
        for (int i = 0; i < count; ++i) {
            builder.group({}).zone({.group = i});
        }
        return state_of_bytes(builder.sample({}).bytes());
    };
    EXPECT_TRUE(with_layers(4096));
    EXPECT_FALSE(with_layers(4097));
}

TEST(ExsState, TenThousandZonesAreAllThere) {
    ExsBuilder builder;
    for (int i = 0; i < 10000; ++i) {
        builder.zone({.low_key = i % 128, .high_key = i % 128, .sample = i % 100});
    }
    for (int i = 0; i < 100; ++i) {
        builder.sample({.name = std::to_string(i) + ".wav"});
    }
    const StatePaths state = state_of(builder);
    EXPECT_EQ(value(state, "Layers/0/Zones/9999/min key"), number(127));
    EXPECT_EQ(value(state, "Layers/0/Zones/10000/ID"), absent);
}

TEST(StateDifferences, NameEachPathThatDiffers) {
    const StatePaths expected{{"a", 1.0}, {"b", 1.0}, {"c", "x"}, {"d", 2.0}};
    const StatePaths actual{{"a", 1.0000005}, {"b", 1.000002}, {"c", "y"}, {"e", "true"}};
    const auto differences = state_differences(expected, actual);
    ASSERT_EQ(differences.size(), 4U);
    EXPECT_TRUE(differences[0].starts_with("b: expected 1, is 1.000002")) << differences[0];
    EXPECT_EQ(differences[1], "c: expected x, is y");
    EXPECT_EQ(differences[2], "d: expected 2, is absent");
    EXPECT_EQ(differences[3], "e: expected absent, is true");
}

TEST(ExsState, EveryLayoutGivesTheSameState) {
    const auto state_in = [](const ExsLayout& layout) {
        return state_of(ExsBuilder(layout)
                            .zone({.options = 8,
                                   .volume = -3,
                                   .low_key = 5,
                                   .low_velocity = 9,
                                   .loop_start = 7,
                                   .group = 0})
                            .zone({.name = "free"})
                            .group({.name = "G", .volume = 2, .trigger = 1})
                            .sample({})
                            .parameters({{7, -6}, {82, 3}, {46, 100}}));
    };
    const StatePaths expected = state_in({});
    EXPECT_FALSE(expected.empty());
    for (const ExsLayout& layout : exs_layouts) {
        EXPECT_EQ(state_differences(expected, state_in(layout)), std::vector<std::string>())
            << layout.name;
    }
}

} // namespace
} // namespace lumo::test
