// The whole state of an instrument that uses every field of zones and groups that a state contains,
// in both byte orders.
#include "platform/exs_states.h"
#include "platform/round_trip.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lumo::test {
namespace {

ExsBuilder full_instrument(const char* magic) {
    return ExsBuilder({.magic = magic})
        .zone({.name = "Free", .low_key = 10, .sample_end = 5000, .loop_end = 5000})
        .zone({.name = "Slice",
               .options = 2 | 8,
               .root_key = 35,
               .fine_tune = 7,
               .volume = -3,
               .low_key = 30,
               .high_key = 40,
               .low_velocity = 110,
               .high_velocity = 127,
               .sample_start = 1000,
               .sample_end = 3000,
               .loop_start = 1200,
               .loop_end = 2900,
               .loop_options = 1,
               .coarse_tune = -18,
               .pan = 60,
               .group = 0,
               .sample = 2})
        .zone({.name = "Muted",
               .options = 16,
               .low_key = 100,
               .high_key = 110,
               .sample_end = 5000,
               .loop_end = 5000,
               .group = 2})
        .group({.name = "Pedal up",
                .volume = 6,
                .pan = 30,
                .low_velocity = 0,
                .high_velocity = 85,
                .low_key = 24,
                .high_key = 96,
                .attack_offset = 25,
                .chosen_by = {3, 0, 0},
                .controller = 64,
                .low_value = 0,
                .high_value = 63})
        .group({.name = "Empty", .volume = 3})
        .group({.name = "Release",
                .volume = -7,
                .pan = -50,
                .options = 64,
                .low_velocity = 99,
                .high_velocity = 104,
                .release_decay = 500,
                .attack_offset = -100,
                .trigger = 1,
                .chosen_by = {1, 2, 3},
                .controller = 64,
                .low_value = 64,
                .high_value = 127})
        .sample({.name = "a.wav", .frames = 5000})
        .sample({.name = "unused.wav"})
        .sample({.name = "long.wav", .frames = 4000})
        .parameters({{7, -6}, {5, 6}, {82, 39}, {84, 127}, {81, 92}, {85, 52}, {80, 49}, {79, 35}});
}

/// The entries of a state, assembled from parts that occur more than once.
class Expected {
public:
    StatePaths paths;

    void part(const std::string& path,
              const std::vector<std::pair<std::string, StateEntry>>& keys) {
        for (const auto& [key, value] : keys) {
            std::string place = path;
            place += path.empty() ? key : "/" + key;
            paths[place] = value;
        }
    }
    void envelope(const std::string& path, int id, const std::array<double, 4>& times_and_level) {
        const auto [attack, decay, sustain, release] = times_and_level;
        part(path, {{"ID", number(id)}, {"enabled", yes}});
        const std::array<double, 7> times{0, attack, 0, decay, 0, release, 0.005F};
        for (int stage = 0; stage < 7; ++stage) {
            const std::string stage_path = path + "/Stages/" + std::to_string(stage);
            part(stage_path, {{"stage", number(stage)}});
            if (stage == 4) {
                part(stage_path, {{"level", number(sustain)}});
            } else {
                const bool is_amp_attack = id == 0 && stage == 1;
                part(stage_path, {{"time", number(times.at(static_cast<std::size_t>(stage)))},
                                  {"curve", number(is_amp_attack ? 22 : 20)}});
            }
        }
    }
    struct Connection {
        double source, control, destination;
        int transform;
        bool inverse;
        std::optional<double> low;
        double high;
    };
    void connection(const std::string& path, int id, const Connection& connection) {
        part(path, {{"ID", number(id)},
                    {"enabled", yes},
                    {"source", number(connection.source)},
                    {"control", number(connection.control)},
                    {"destination", number(connection.destination)},
                    {"transform", number(connection.transform)},
                    {"inverse", connection.inverse ? yes : no}});
        if (connection.low) {
            part(path,
                 {{"min value", number(*connection.low)}, {"max value", number(connection.high)}});
        } else {
            part(path, {{"scale", number(connection.high)}});
        }
    }
    /// The entries that differ between layers only in the layer's number.
    void layer(int id, double attack, double decay) {
        const std::string path = "Layers/" + std::to_string(id);
        part(path, {{"ID", number(id)},
                    {"Amplifier/ID", number(0)},
                    {"Amplifier/enabled", yes},
                    {"Oscillator/ID", number(0)},
                    {"Oscillator/enabled", yes},
                    {"Filters/ID", number(0)},
                    {"Filters/enabled", no},
                    {"Filters/cutoff", number(20000)},
                    {"Filters/resonance", number(0)},
                    {"LFOs/0/ID", number(0)},
                    {"LFOs/0/delay", number(0)},
                    {"LFOs/0/enabled", yes},
                    {"LFOs/0/rate", number(4.8F)}});
        envelope(path + "/Envelopes/0", 0, {attack, decay, 92.0F / 127.0F, 1.1242387294769287F});
        envelope(path + "/Envelopes/1", 1, {0, 0, 35.0F / 127.0F, 0.8040907979011536F});
        const double n = 256 * id;
        const double pitch = 816840704 + n;
        const double gain = 1343225856 + n;
        const double pan = 1344274432 + n;
        const double cutoff = 1095761920 + n;
        const Connection connections[] = {
            {300, 0, pitch, 1, false, {}, 12800},
            {301, 0, gain, 2, true, {}, -60},
            {7, 0, gain, 2, true, {}, -96},
            {11, 0, gain, 2, true, {}, -96},
            {10, 0, pan, 1, false, -0.508F, 0.508F},
            {536870912 + n, 0, gain, 1, true, {}, -96},
            {224, 0, pitch, 1, false, -200, 200},
            {536870913 + n, 0, cutoff, 1, false, {}, 0},
            {268435456 + n, 1, pitch, 1, false, {}, 16.60954284667969F},
        };
        int connection_id = 0;
        for (const Connection& each : connections) {
            connection(path + "/Connections/" + std::to_string(connection_id), connection_id, each);
            ++connection_id;
        }
    }
};

StatePaths expected_state() {
    Expected state;
    state.part("", {{"name", "Pad.exs"}, {"gain", number(-6)}, {"voice count", number(6)}});
    for (const int id : {240, 241}) {
        state.part("LFOs/" + std::to_string(id),
                   {{"ID", number(id)}, {"enabled", yes}, {"rate", number(4.8F)}});
    }
    state.layer(0, 0.08892902731895447F, 40);
    state.part("Layers/0/Zones/0", {{"ID", number(0)},
                                    {"enabled", yes},
                                    {"loop enabled", no},
                                    {"name", "Free"},
                                    {"root key", number(60)},
                                    {"min key", number(10)},
                                    {"max key", number(127)},
                                    {"waveform", number(268435456)}});
    state.layer(1, 0.11392902582883835F, 40);
    state.part("Layers/1", {{"name", "Pedal up"},
                            {"gain", number(6)},
                            {"pan", number(30.00000190734863F)},
                            {"min vel", number(0)},
                            {"max vel", number(85)},
                            {"min key", number(24)},
                            {"max key", number(96)},
                            {"sel ctrlr", number(64)},
                            {"sel ctrlr min val", number(0)},
                            {"sel ctrlr max val", number(63)}});
    state.part("Layers/1/Zones/0", {{"ID", number(0)},
                                    {"enabled", yes},
                                    {"loop enabled", yes},
                                    {"name", "Slice"},
                                    {"root key", number(35)},
                                    {"waveform", number(268435458)},
                                    {"min key", number(30)},
                                    {"max key", number(40)},
                                    {"min vel", number(110)},
                                    {"max vel", number(127)},
                                    {"gain", number(-3)},
                                    {"pan", number(60.00000381469727F)},
                                    {"coarse tune", number(-18)},
                                    {"fine tune", number(7)},
                                    {"pitch tracking", no},
                                    {"sample start", number(1000)},
                                    {"sample end", number(3000)},
                                    {"loop start", number(1200)},
                                    {"loop end", number(2900)}});
    state.layer(2, 0, 0.5);
    state.part("Layers/2", {{"name", "Release"},
                            {"gain", number(-7)},
                            {"pan", number(-50)},
                            {"min vel", number(99)},
                            {"max vel", number(104)},
                            {"trigger mode", number(12)},
                            {"sel ctrlr", number(64)},
                            {"sel ctrlr min val", number(64)},
                            {"sel ctrlr max val", number(127)}});
    state.part("Layers/2/Zones/0", {{"ID", number(0)},
                                    {"enabled", no},
                                    {"loop enabled", no},
                                    {"name", "Muted"},
                                    {"root key", number(60)},
                                    {"waveform", number(268435456)},
                                    {"min key", number(100)},
                                    {"max key", number(110)}});
    return state.paths;
}

TEST(ExsWholeState, HasEveryFieldAtOnceInBothByteOrdersAndNothingElse) {
    const StatePaths expected = expected_state();
    for (const char* magic : {"TBOS", "SOBT"}) {
        const StatePaths state = state_of(full_instrument(magic));
        EXPECT_EQ(state_differences(expected, state), std::vector<std::string>()) << magic;
        EXPECT_EQ(state, expected) << magic; // to the last bit of each real
    }
}

TEST(ExsWholeState, IsTheSameAfterBeingWrittenAndLoadedAgain) {
    for (const char* magic : {"TBOS", "SOBT"}) {
        const std::string bytes = full_instrument(magic).bytes();
        platform::SamplerState state;
        ASSERT_EQ(platform::load_exs_bytes(
                      {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()},
                      "Pad.exs", state.loaded),
                  0);
        expect_round_trip(state);
    }
}

} // namespace
} // namespace lumo::test
