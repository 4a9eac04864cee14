// Properties of every instrument that can be read, tested over randomly generated instruments and
// over files with randomly changed bytes. The seed is fixed, so every run tests the same.
#include "platform/round_trip.h"
#include "support/exs_builder.h"

#include <gtest/gtest.h>

#include <random>

namespace lumo::platform {
namespace {

using test::ExsBuilder;

class Random {
public:
    int up_to(int most) { return std::uniform_int_distribution(0, most)(engine_); }
    int between(int least, int most) { return least + up_to(most - least); }
    std::string name() {
        std::string text(static_cast<std::size_t>(up_to(70)), ' ');
        for (char& letter : text) {
            letter = static_cast<char>(up_to(255));
        }
        return text;
    }
    /// A field's value: between -1 and `likely` in nine of ten calls, any value otherwise.
    std::int32_t word(int likely) {
        return up_to(9) == 0 ? std::uniform_int_distribution<std::int32_t>()(engine_)
                             : between(-1, likely);
    }

private:
    std::mt19937 engine_{2024};
};

std::string instrument(Random& random) {
    const auto& layouts = test::exs_layouts;
    ExsBuilder builder(layouts[static_cast<std::size_t>(random.up_to(layouts.size() - 1))]);
    for (int i = random.up_to(12); i > 0; --i) {
        builder.zone({.name = random.name(),
                      .options = random.up_to(255),
                      .root_key = random.up_to(255),
                      .fine_tune = random.between(-99, 99),
                      .volume = random.between(-96, 12),
                      .low_key = random.up_to(140),
                      .high_key = random.up_to(255),
                      .low_velocity = random.up_to(140),
                      .high_velocity = random.up_to(255),
                      .sample_start = random.word(1000),
                      .sample_end = random.word(2000),
                      .loop_start = random.word(2000),
                      .loop_end = random.word(2000),
                      .loop_options = random.up_to(7),
                      .coarse_tune = random.between(-24, 24),
                      .pan = random.up_to(255),
                      .group = random.word(4),
                      .sample = random.word(4)});
    }
    for (int i = random.up_to(4); i > 0; --i) {
        builder.group({.name = random.name(),
                       .volume = random.between(-96, 24),
                       .pan = random.up_to(255),
                       .options = random.up_to(255),
                       .low_velocity = random.up_to(60),
                       .high_velocity = random.between(30, 255),
                       .low_key = random.up_to(60),
                       .high_key = random.between(30, 255),
                       .release_decay = random.word(10000),
                       .attack_offset = random.word(500),
                       .trigger = random.up_to(1),
                       .chosen_by = {random.up_to(7), random.up_to(7), random.up_to(7)},
                       .controller = random.up_to(255),
                       .low_value = random.up_to(255),
                       .high_value = random.up_to(255)});
    }
    for (int i = random.up_to(4); i > 0; --i) {
        builder.sample({.directory = random.name(),
                        .name = random.name(),
                        .frames = static_cast<std::uint32_t>(random.word(2000))});
    }
    test::ExsParameterList first;
    for (int i = random.up_to(99); i > 0; --i) {
        first.emplace_back(random.up_to(255), random.word(1000));
    }
    return builder.parameters(first).bytes();
}

void expect_a_state_that_loads(const std::string& bytes, int& loads) {
    SamplerState state;
    if (load_exs_bytes({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()},
                       "Random.exs", state.loaded) != 0) {
        return;
    }
    ++loads;
    test::expect_round_trip(state);
}

TEST(ExsProperties, StateOfAnyInstrumentIsWrittenReadAndLoadedAgain) {
    Random random;
    int loads = 0;
    for (int i = 0; i < 500; ++i) {
        expect_a_state_that_loads(instrument(random), loads);
    }
    EXPECT_EQ(loads, 500);
}

TEST(ExsProperties, StateOfAnyDamagedFileThatIsReadIsWrittenReadAndLoadedAgain) {
    Random random;
    int loads = 0;
    for (int i = 0; i < 2000; ++i) {
        std::string bytes = instrument(random);
        for (int changes = random.between(1, 8); changes > 0; --changes) {
            const int at = random.up_to(static_cast<int>(bytes.size()) - 1);
            bytes[static_cast<std::size_t>(at)] = static_cast<char>(random.up_to(255));
        }
        expect_a_state_that_loads(bytes, loads);
    }
    EXPECT_GT(loads, 200);
}

} // namespace
} // namespace lumo::platform
