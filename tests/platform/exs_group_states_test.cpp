// Groups, crops and tuning of an EXS24 instrument: file fields in both byte orders, and the state
// keys that they become.
#include "platform/exs_states.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace lumo::test {
namespace {

class ExsGroupStates : public testing::TestWithParam<const char*> {
protected:
    ExsBuilder file() const { return ExsBuilder({.magic = GetParam()}); }

    /// The state of a group with one zone that plays a sample of 1000 frames.
    StatePaths with_group(const ExsGroupFields& fields,
                          const ExsParameterList& parameters = {}) const {
        return state_of(file().zone({.group = 0}).group(fields).sample({}).parameters(parameters));
    }
    StatePaths with_zone(const ExsZoneFields& fields, std::uint32_t frames = 1000) const {
        return state_of(file().zone(fields).sample({.frames = frames}));
    }
};

INSTANTIATE_TEST_SUITE_P(ByteOrders, ExsGroupStates, testing::Values("TBOS", "SOBT"),
                         [](const auto& magic) {
                             return std::string(magic.param) == "TBOS" ? "Little" : "Big";
                         });

const std::string layer = "Layers/0/";
const std::string amp_stages = "Layers/0/Envelopes/0/Stages/";

// --- groups --------------------------------------------------------------------------------------

TEST_P(ExsGroupStates, GroupsWithZonesAreLayersInTheirOrder) {
    const StatePaths state = state_of(file()
                                          .zone({.name = "b", .group = 2})
                                          .zone({.name = "a", .group = 0})
                                          .group({.name = "Soft"})
                                          .group({.name = "Unused"})
                                          .group({.name = "Loud"})
                                          .sample({}));
    EXPECT_EQ(value(state, "Layers/0/name"), StateEntry("Soft"));
    EXPECT_EQ(value(state, "Layers/0/Zones/0/name"), StateEntry("a"));
    EXPECT_EQ(value(state, "Layers/1/name"), StateEntry("Loud"));
    EXPECT_EQ(value(state, "Layers/1/Zones/0/name"), StateEntry("b"));
    EXPECT_EQ(value(state, "Layers/2/ID"), absent);
}

TEST_P(ExsGroupStates, PlainGroupAddsItsNameAlone) {
    const StatePaths plain = state_of(file().zone({}).sample({}));
    StatePaths expected = plain;
    expected["Layers/0/name"] = "Group 1";
    EXPECT_EQ(with_group({}), expected);
}

TEST_P(ExsGroupStates, VolumeIsTheLayersGainAndZonesKeepTheirs) {
    const StatePaths state =
        state_of(file().zone({.volume = -2, .group = 0}).group({.volume = -7}).sample({}));
    EXPECT_EQ(value(state, layer + "gain"), number(-7));
    EXPECT_EQ(value(state, first_zone + "/gain"), number(-2));
    EXPECT_EQ(value(with_group({.volume = 8}), layer + "gain"), number(8));
    EXPECT_EQ(value(with_group({.volume = 0}), layer + "gain"), absent);
}

TEST_P(ExsGroupStates, VelocityRangeIsTheLayersAndZonesKeepTheirs) {
    const StatePaths state =
        state_of(file()
                     .zone({.options = 8, .low_velocity = 1, .high_velocity = 59, .group = 0})
                     .zone({.low_key = 1, .group = 0})
                     .group({.low_velocity = 99, .high_velocity = 104})
                     .sample({}));
    EXPECT_EQ(value(state, layer + "min vel"), number(99));
    EXPECT_EQ(value(state, layer + "max vel"), number(104));
    EXPECT_EQ(value(state, "Layers/0/Zones/0/min vel"), number(1));
    EXPECT_EQ(value(state, "Layers/0/Zones/0/max vel"), number(59));
    EXPECT_EQ(value(state, "Layers/0/Zones/1/min vel"), absent);
    EXPECT_EQ(value(state, "Layers/0/Zones/1/max vel"), absent);
}

TEST_P(ExsGroupStates, BothEndsOfAVelocityRangeAreWrittenUnlessItIsFull) {
    const StatePaths soft = with_group({.low_velocity = 0, .high_velocity = 85});
    EXPECT_EQ(value(soft, layer + "min vel"), number(0));
    EXPECT_EQ(value(soft, layer + "max vel"), number(85));
    const StatePaths loud = with_group({.low_velocity = 1, .high_velocity = 127});
    EXPECT_EQ(value(loud, layer + "min vel"), number(1));
    EXPECT_EQ(value(loud, layer + "max vel"), number(127));
}

TEST_P(ExsGroupStates, KeyRangeIsTheLayersAndZonesKeepTheirs) {
    const StatePaths state = state_of(file()
                                          .zone({.low_key = 90, .high_key = 95, .group = 0})
                                          .group({.low_key = 1, .high_key = 72})
                                          .sample({}));
    EXPECT_EQ(value(state, layer + "min key"), number(1));
    EXPECT_EQ(value(state, layer + "max key"), number(72));
    EXPECT_EQ(value(state, first_zone + "/min key"), number(90));
    EXPECT_EQ(value(state, first_zone + "/max key"), number(95));
    EXPECT_EQ(value(with_group({}), layer + "min key"), absent);
    EXPECT_EQ(value(with_group({}), layer + "max key"), absent);
}

TEST_P(ExsGroupStates, PanIsTheLayersInPercent) {
    EXPECT_EQ(value(with_group({.pan = 30}), layer + "pan"), number(30.00000190734863F));
    EXPECT_EQ(value(with_group({.pan = -50}), layer + "pan"), number(-50));
    EXPECT_EQ(value(with_group({.pan = 0}), layer + "pan"), absent);
    EXPECT_EQ(value(with_group({.pan = 30}), first_zone + "/pan"), absent);
}

TEST_P(ExsGroupStates, GroupOnReleaseHasTriggerModeTwelve) {
    EXPECT_EQ(value(with_group({.trigger = 1}), layer + "trigger mode"), number(12));
    EXPECT_EQ(value(with_group({.trigger = 2}), layer + "trigger mode"), absent);
}

TEST_P(ExsGroupStates, GroupOnReleaseWithADecayOfItsOwnHasThat) {
    const auto decay = [this](const ExsGroupFields& fields) {
        return value(with_group(fields, {{84, 127}}), amp_stages + "3/time");
    };
    EXPECT_EQ(decay({.options = 64, .release_decay = 500, .trigger = 1}), number(0.5));
    EXPECT_EQ(decay({.options = 64, .release_decay = 9999, .trigger = 1}),
              number(9.99899959564209F));
    EXPECT_EQ(decay({.options = 64, .release_decay = 70000, .trigger = 1}), number(70));
    EXPECT_EQ(decay({.release_decay = 500, .trigger = 1}), number(40));
    EXPECT_EQ(decay({.options = 64, .release_decay = 500}), number(40));
}

TEST_P(ExsGroupStates, GroupSelectedByAControllerHasThreeKeys) {
    const std::vector<std::array<int, 3>> conditions{{3, 0, 0}, {1, 3, 0}, {1, 2, 3}};
    for (const auto& chosen_by : conditions) {
        const StatePaths state = with_group(
            {.chosen_by = chosen_by, .controller = 64, .low_value = 64, .high_value = 127});
        EXPECT_EQ(value(state, layer + "sel ctrlr"), number(64));
        EXPECT_EQ(value(state, layer + "sel ctrlr min val"), number(64));
        EXPECT_EQ(value(state, layer + "sel ctrlr max val"), number(127));
        EXPECT_EQ(value(state, layer + "trigger mode"), absent);
    }
    const StatePaths full = with_group({.chosen_by = {3, 0, 0}, .controller = 1});
    EXPECT_EQ(value(full, layer + "sel ctrlr min val"), number(0));
    EXPECT_EQ(value(full, layer + "sel ctrlr max val"), number(127));
}

TEST_P(ExsGroupStates, GroupSelectedOtherwiseHasNoneOfThem) {
    const StatePaths state =
        with_group({.chosen_by = {2, 0, 0}, .controller = 64, .low_value = 64});
    for (const char* key : {"sel ctrlr", "sel ctrlr min val", "sel ctrlr max val"}) {
        EXPECT_EQ(value(state, layer + key), absent) << key;
    }
}

TEST_P(ExsGroupStates, AttackOffsetIsAddedToTheInstrumentsAttack) {
    const auto attack = [this](std::int32_t offset, int parameter) {
        return value(with_group({.attack_offset = offset}, {{82, parameter}}),
                     amp_stages + "1/time");
    };
    EXPECT_EQ(attack(25, 39), number(0.11392902582883835F));
    EXPECT_EQ(attack(20, 39), number(0.10892902314662933F));
    EXPECT_EQ(attack(1, 0), number(0.001F));
    EXPECT_EQ(attack(-50, 39), number(0.08892902731895447F - 0.05F));
    EXPECT_EQ(attack(-100, 39), number(0));
}

TEST_P(ExsGroupStates, EnvelopeOfAGroupIsItsLayersAlone) {
    const StatePaths state = state_of(file()
                                          .zone({.group = 0})
                                          .zone({.group = 1})
                                          .group({.attack_offset = 10})
                                          .group({})
                                          .sample({}));
    EXPECT_EQ(value(state, "Layers/0/Envelopes/0/Stages/1/time"), number(0.01F));
    EXPECT_EQ(value(state, "Layers/1/Envelopes/0/Stages/1/time"), number(0));
    EXPECT_EQ(value(state, "Layers/0/Envelopes/1/Stages/1/time"), number(0));
}

TEST_P(ExsGroupStates, OtherFieldsOfAGroupWriteNothing) {
    const std::string chunk = file().group({}).chunks();
    std::string changed = chunk;
    const std::pair<std::size_t, std::size_t> unread[] = {
        {86, 1},   // voices
        {88, 1},   // exclusive class
        {116, 4},  // crossfades
        {125, 3},  // filter offsets
        {144, 12}, // decay, sustain and release offsets
        {158, 10}, // output, key switch, round robin
    };
    for (const auto& [offset, count] : unread) {
        changed.replace(offset, count, count, '\5');
    }
    const auto with_chunk = [this](const std::string& group) {
        return state_of(file().zone({.group = 0}).sample({}).chunk(2, group.substr(84), "Group"));
    };
    EXPECT_EQ(with_chunk(changed), with_chunk(chunk));
    EXPECT_NE(changed, chunk);
}

// --- zones ---------------------------------------------------------------------------------------

TEST_P(ExsGroupStates, CoarseTuneIsInSemitones) {
    for (const int semitones : {-18, 20}) {
        EXPECT_EQ(value(with_zone({.coarse_tune = semitones}), first_zone + "/coarse tune"),
                  number(semitones));
    }
    EXPECT_EQ(value(with_zone({.coarse_tune = 0}), first_zone + "/coarse tune"), absent);
}

TEST_P(ExsGroupStates, ZonesPanIsInPercent) {
    const auto pan = [this](int percent) {
        return value(with_zone({.pan = percent}), first_zone + "/pan");
    };
    EXPECT_EQ(pan(30), number(30.00000190734863F));
    EXPECT_EQ(pan(60), number(60.00000381469727F));
    EXPECT_EQ(pan(55), number(55));
    EXPECT_EQ(pan(61), number(61));
    EXPECT_EQ(pan(-30), number(-30.00000190734863F));
    EXPECT_EQ(pan(0), absent);
}

using Crop = std::pair<StateEntry, StateEntry>;

Crop crop(const StatePaths& state) {
    return {value(state, first_zone + "/sample start"), value(state, first_zone + "/sample end")};
}

TEST_P(ExsGroupStates, CropHasAStartUnlessZeroAndAnEndUnlessTheSamples) {
    const auto crop_of = [this](std::int32_t start, std::int32_t end) {
        return crop(with_zone({.sample_start = start, .sample_end = end}, 70000));
    };
    EXPECT_EQ(crop_of(0, 70000), Crop(absent, absent));
    EXPECT_EQ(crop_of(0, 70001), Crop(absent, absent));
    EXPECT_EQ(crop_of(1, 70000), Crop(number(1), absent));
    EXPECT_EQ(crop_of(300, 69999), Crop(number(300), number(69999)));
    EXPECT_EQ(crop_of(0, 500), Crop(absent, number(500)));
}

TEST_P(ExsGroupStates, CropWithoutAnEndEndsWithTheSample) {
    const StatePaths state = with_zone({.sample_start = 300, .sample_end = 0});
    EXPECT_EQ(crop(state), Crop(number(300), absent));
}

TEST_P(ExsGroupStates, CropThatCannotBeIsNone) {
    const std::pair<std::int32_t, std::int32_t> crops[] = {
        {500, 500}, {900, 200}, {1000, 1200}, {1000, 0}, {-1, 1000}};
    for (const auto& [start, end] : crops) {
        EXPECT_EQ(crop(with_zone({.sample_start = start, .sample_end = end})), Crop(absent, absent))
            << start << ' ' << end;
    }
}

TEST_P(ExsGroupStates, EndOfACropIsWrittenWhereTheSamplesLengthIsUnknown) {
    const StatePaths state = with_zone({.sample_start = 300, .sample_end = 1000}, 0);
    EXPECT_EQ(crop(state), Crop(number(300), number(1000)));
}

TEST_P(ExsGroupStates, SlicesOfOneSampleEachHaveTheirOwnStartAndEnd) {
    ExsBuilder builder = file();
    for (int i = 0; i < 4; ++i) {
        builder.zone({.low_key = 36 + i, .sample_start = 100 * i, .sample_end = 100 * (i + 1)});
    }
    const StatePaths state = state_of(builder.sample({.frames = 400}));
    for (int i = 0; i < 4; ++i) {
        const std::string zone = "Layers/0/Zones/" + std::to_string(i);
        EXPECT_EQ(value(state, zone + "/sample start"), i == 0 ? absent : number(100 * i));
        EXPECT_EQ(value(state, zone + "/sample end"), i == 3 ? absent : number(100 * (i + 1)));
        EXPECT_EQ(value(state, zone + "/waveform"), number(268435456));
    }
}

TEST_P(ExsGroupStates, LoopWritesNoModeWhateverItsOptions) {
    const StatePaths state = with_zone({.loop_options = 7});
    EXPECT_EQ(keys_below(state, first_zone),
              (std::vector<std::string>{"ID", "enabled", "loop enabled", "name", "root key",
                                        "waveform"}));
}

TEST_P(ExsGroupStates, RootKeySixtyIsWritten) {
    EXPECT_EQ(value(with_zone({.root_key = 60}), first_zone + "/root key"), number(60));
}

// --- parameters ----------------------------------------------------------------------------------

TEST_P(ExsGroupStates, EnvelopeTimesHaveOneRoundedFourthPower) {
    const StatePaths state = state_of(file().parameters({{80, 49}, {79, 35}, {85, 52}}));
    EXPECT_EQ(value(state, "Layers/0/Envelopes/1/Stages/5/time"), number(0.8040907979011536F));
    EXPECT_EQ(value(state, amp_stages + "5/time"), number(1.1242387294769287F));
}

TEST_P(ExsGroupStates, LfoRateBelowThirtyFourGoesOnWithTheFormula) {
    const StatePaths state = state_of(file().parameters({{61, 33}, {63, 1}}));
    EXPECT_EQ(value(state, "Layers/0/LFOs/0/rate"), number(0.11F));
    EXPECT_EQ(value(state, "LFOs/240/rate"), number(0.02F));
}

TEST_P(ExsGroupStates, ParametersWithoutAMatrixHaveThatOfANewInstrument) {
    EXPECT_EQ(state_of(file().parameters({{5, 16}})), state_of(file()));
    EXPECT_EQ(value(state_of(file().parameters({{5, 16}})), "Layers/0/Connections/8/control"),
              number(1));
}

TEST_P(ExsGroupStates, CodesOfEachLayerCarryItsNumber) {
    ExsBuilder builder = file();
    for (int i = 0; i < 3; ++i) {
        builder.zone({.group = i}).group({});
    }
    const StatePaths state = state_of(builder.sample({}));
    for (int i = 0; i < 3; ++i) {
        const std::string connections = "Layers/" + std::to_string(i) + "/Connections/";
        EXPECT_EQ(value(state, connections + "8/source"), number(268435456 + 256 * i));
        EXPECT_EQ(value(state, connections + "8/destination"), number(816840704 + 256 * i));
        EXPECT_EQ(value(state, connections + "8/control"), number(1));
    }
}

} // namespace
} // namespace lumo::test
