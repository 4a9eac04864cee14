// The expected values are those in states that the real sampler wrote, exact to the last bit.
#include "sampler/exs_formulas.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <utility>

namespace lumo::platform {
namespace {

ExsParameters with(std::initializer_list<std::pair<int, int>> values) {
    ExsParameters parameters;
    for (const auto& [id, value] : values) {
        parameters.set(static_cast<std::uint16_t>(id), static_cast<std::int16_t>(value));
    }
    return parameters;
}

TEST(ExsFormulas, NewInstrumentHoldsItsLevelAndEndsAtOnce) {
    const auto [amp, second] = exs_envelopes(ExsParameters());
    EXPECT_EQ(amp.attack, 0);
    EXPECT_EQ(amp.decay, 0);
    EXPECT_EQ(amp.sustain, 1);
    EXPECT_EQ(amp.release, 0);
    EXPECT_EQ(second.attack, 0);
    EXPECT_EQ(second.decay, 0);
    EXPECT_EQ(second.sustain, 0);
    EXPECT_EQ(second.release, 0);
}

TEST(ExsFormulas, AmplifierTimesGoUpToFortySecondsTheAttackToTen) {
    const auto longest = exs_envelopes(with({{82, 127}, {84, 127}, {85, 127}}))[0];
    EXPECT_EQ(longest.attack, 10);
    EXPECT_EQ(longest.decay, 40);
    EXPECT_EQ(longest.release, 40);
    const auto amp = exs_envelopes(with({{84, 84}, {85, 38}, {81, 0}}))[0];
    EXPECT_EQ(amp.decay, 7.6553001403808594F);
    EXPECT_EQ(amp.release, 0.32061183452606201F);
    EXPECT_EQ(amp.sustain, 0);
    EXPECT_EQ(exs_envelopes(with({{85, 72}}))[0].release, 4.1321415901184082F);
}

TEST(ExsFormulas, SecondEnvelopesTimesAreOfTheWayAboveAndBelowItsSustain) {
    const auto second = exs_envelopes(with({{78, 76}, {79, 41}, {80, 66}}))[1];
    EXPECT_EQ(second.decay, 1.8938465118408203F);
    EXPECT_EQ(second.sustain, 0.32283464074134827F);
    EXPECT_EQ(second.release, 2.2593352794647217F);
    EXPECT_EQ(exs_envelopes(with({{76, 127}}))[1].attack, 10);
}

TEST(ExsFormulas, FourthPowerOfATimeIsRoundedOnce) {
    // Rounding after each multiplication would give 0.80409073829650879.
    EXPECT_EQ(exs_envelopes(with({{80, 49}, {79, 35}}))[1].release, 0.80409079790115356F);
    EXPECT_EQ(exs_envelopes(with({{78, 49}, {79, 92}}))[1].decay, 0.80409079790115356F);
}

TEST(ExsFormulas, GroupsAttackIsTheInstrumentsAndItsOffsetInMilliseconds) {
    const ExsEnvelope amp = exs_envelopes(with({{82, 39}}))[0];
    EXPECT_EQ(exs_group_envelope(amp, {.attack_offset = 25}).attack, 0.11392902582883835F);
    EXPECT_EQ(exs_group_envelope(amp, {.attack_offset = 20}).attack, 0.10892902314662933F);
    EXPECT_EQ(exs_group_envelope({}, {.attack_offset = 1}).attack, 0.001F);
    EXPECT_EQ(exs_group_envelope(amp, {}), amp);
}

TEST(ExsFormulas, AttackOffsetBelowNothingEndsThere) {
    const ExsEnvelope amp = exs_envelopes(with({{82, 39}}))[0];
    EXPECT_EQ(exs_group_envelope(amp, {.attack_offset = -100}).attack, 0);
    EXPECT_FALSE(std::signbit(exs_group_envelope({}, {.attack_offset = -1}).attack));
}

TEST(ExsFormulas, DecayOfAReleaseGroupIsItsOwnInMilliseconds) {
    const ExsEnvelope amp = exs_envelopes(with({{84, 127}}))[0];
    EXPECT_EQ(exs_group_envelope(amp, {.on_release = true, .release_decay = 500}).decay, 0.5F);
    EXPECT_EQ(exs_group_envelope(amp, {.on_release = true, .release_decay = 9999}).decay,
              9.99899959564209F);
    EXPECT_EQ(exs_group_envelope(amp, {.on_release = true, .release_decay = 0}).decay, 0);
    EXPECT_EQ(exs_group_envelope(amp, {.on_release = true}).decay, 40);
    EXPECT_EQ(exs_group_envelope(amp, {.release_decay = 500}).decay, 40);
}

TEST(ExsFormulas, PanIsInPercentWithTheRoundingOfAPartOfOne) {
    EXPECT_EQ(exs_pan(30), 30.00000190734863F);
    EXPECT_EQ(exs_pan(60), 60.00000381469727F);
    EXPECT_EQ(exs_pan(55), 55.0F);
    EXPECT_EQ(exs_pan(-30), -30.00000190734863F);
    EXPECT_EQ(exs_pan(100), 100.0F);
}

TEST(ExsFormulas, SecondEnvelopeAtFullSustainHasNoDecay) {
    EXPECT_EQ(exs_envelopes(with({{78, 76}, {79, 127}}))[1].decay, 0);
}

TEST(ExsFormulas, SecondEnvelopeWithoutSustainReleasesUnscaled) {
    EXPECT_EQ(exs_envelopes(with({{80, 127}, {79, 0}}))[1].release, 10);
}

TEST(ExsFormulas, CutoffDoublesEveryHundredFromTwentyHertzToTwentyThousand) {
    EXPECT_EQ(exs_cutoff(with({{30, 0}})), 20);
    EXPECT_EQ(exs_cutoff(with({{30, 100}})), 40);
    EXPECT_EQ(exs_cutoff(with({{30, 279}})), 138.32594299316406F);
    EXPECT_EQ(exs_cutoff(with({{30, 434}})), 405.04214477539062F);
    EXPECT_EQ(exs_cutoff(with({{30, 1000}})), 20000);
}

TEST(ExsFormulas, ResonanceGoesUpToFortyDecibels) {
    EXPECT_EQ(exs_resonance(with({{29, 0}})), 0);
    EXPECT_EQ(exs_resonance(with({{29, 139}})), 5.5600004196166992F);
    EXPECT_EQ(exs_resonance(with({{29, 991}})), 39.640003204345703F);
    EXPECT_EQ(exs_resonance(with({{29, 1000}})), 40);
}

TEST(ExsFormulas, LfoRatesAreTwelveToAnOctaveAndRoundedToHundredths) {
    EXPECT_EQ(exs_lfo_rate(98), 4.8000001907348633F);
    EXPECT_EQ(exs_lfo_rate(110), 9.6F);
    EXPECT_EQ(exs_lfo_rate(66), 0.75999999046325684F);
    EXPECT_EQ(exs_lfo_rate(42), 0.18999999761581421F);
}

TEST(ExsFormulas, LfoAtThirtyFourStandsStill) {
    EXPECT_EQ(exs_lfo_rate(34), std::nullopt);
}

} // namespace
} // namespace lumo::platform
