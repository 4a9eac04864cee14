// The connections of an instrument: the fixed ones, those set by parameters, and the matrix.
#include "sampler/exs_connections.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace lumo::platform {
namespace {

/// The parameters of a real instrument, without the two matrix slots that a new one has.
ExsParameters plain() {
    ExsParameters parameters;
    parameters.set(173, 0);
    parameters.set(179, 0);
    return parameters;
}

/// The first slot of the matrix set, the second empty.
ExsParameters with_slot(int destination, int source, int via, int low, int high) {
    ExsParameters parameters = plain();
    std::uint16_t id = 173;
    for (const int value : {destination, source, via, low, high}) {
        parameters.set(id++, static_cast<std::int16_t>(value));
    }
    return parameters;
}

std::optional<ExsConnection> find(const std::vector<ExsConnection>& connections, int id) {
    const auto found = std::ranges::find(connections, id, &ExsConnection::id);
    return found == connections.end() ? std::nullopt : std::optional(*found);
}

/// The connection of the first slot; it follows the six fixed ones and the pitch bend.
std::optional<ExsConnection> slot(const ExsParameters& parameters) {
    return find(exs_connections(parameters), 7);
}

void expect_scaled(const std::optional<ExsConnection>& connection, std::uint32_t source,
                   std::uint32_t destination, float scale) {
    ASSERT_TRUE(connection);
    EXPECT_EQ(connection->source, source);
    EXPECT_EQ(connection->destination, destination);
    EXPECT_FALSE(connection->has_range);
    EXPECT_EQ(connection->high, scale);
}

void expect_ranged(const std::optional<ExsConnection>& connection, std::uint32_t source,
                   std::uint32_t destination, float low, float high) {
    ASSERT_TRUE(connection);
    EXPECT_EQ(connection->source, source);
    EXPECT_EQ(connection->destination, destination);
    EXPECT_TRUE(connection->has_range);
    EXPECT_EQ(connection->low, low);
    EXPECT_EQ(connection->high, high);
}

TEST(ExsConnections, SixAreInEveryLayer) {
    const auto connections = exs_connections(plain());
    expect_scaled(find(connections, 0), 300, 0x30B00000, 12800);
    expect_scaled(find(connections, 1), 301, 0x50100000, -60);
    expect_scaled(find(connections, 2), 7, 0x50100000, -96);
    expect_scaled(find(connections, 3), 11, 0x50100000, -96);
    expect_ranged(find(connections, 4), 10, 0x50200000, -0.508F, 0.508F);
    expect_scaled(find(connections, 5), 0x20000000, 0x50100000, -96);
}

TEST(ExsConnections, GainIsDampedInverselyAndByEarFromVelocityAndControllers) {
    const auto connections = exs_connections(plain());
    for (const int id : {1, 2, 3}) {
        EXPECT_TRUE(find(connections, id)->inverse) << id;
        EXPECT_EQ(find(connections, id)->transform, ExsConnection::concave) << id;
    }
    EXPECT_TRUE(find(connections, 5)->inverse);
    EXPECT_EQ(find(connections, 5)->transform, ExsConnection::linear);
    EXPECT_FALSE(find(connections, 0)->inverse);
    EXPECT_FALSE(find(connections, 4)->inverse);
}

TEST(ExsConnections, LevelByVelocityIsTheScaleOfTheSecond) {
    ExsParameters parameters = plain();
    parameters.set(90, -12);
    EXPECT_EQ(find(exs_connections(parameters), 1)->high, -12);
}

TEST(ExsConnections, BendDownIsAsBendUpUnlessSet) {
    ExsParameters parameters = plain();
    parameters.set(3, 5);
    expect_ranged(find(exs_connections(parameters), 6), 224, 0x30B00000, -500, 500);
    parameters.set(4, 12);
    expect_ranged(find(exs_connections(parameters), 6), 224, 0x30B00000, -1200, 500);
    parameters.set(4, 0);
    expect_ranged(find(exs_connections(parameters), 6), 224, 0x30B00000, 0, 500);
}

TEST(ExsConnections, VolumeByKeyComesBeforeTheBend) {
    ExsParameters parameters = plain();
    parameters.set(8, -12);
    const auto connections = exs_connections(parameters);
    expect_ranged(find(connections, 6), 300, 0x50100000, 12, -12);
    EXPECT_EQ(find(connections, 7)->source, 224U);
}

TEST(ExsConnections, AttackByVelocityIsInOctavesOfTime) {
    ExsParameters parameters = plain();
    parameters.set(82, 26);
    parameters.set(83, 63);
    const auto connection = find(exs_connections(parameters), 7);
    ASSERT_TRUE(connection);
    EXPECT_EQ(connection->source, 301U);
    EXPECT_EQ(connection->destination, 0x22000000U);
    EXPECT_NEAR(connection->high, -5.10736, 5e-6);
}

TEST(ExsConnections, AttackByVelocityNeedsTwoTimesAboveZeroThatDiffer) {
    for (const auto& [loud, soft] : {std::pair{0, 63}, {26, 0}, {26, 26}, {0, 0}}) {
        ExsParameters parameters = plain();
        parameters.set(82, static_cast<std::int16_t>(loud));
        parameters.set(83, static_cast<std::int16_t>(soft));
        EXPECT_EQ(exs_connections(parameters).size(), 7U) << loud << ' ' << soft;
    }
}

TEST(ExsConnections, CutoffByKeyComesLast) {
    ExsParameters parameters = with_slot(6, 1, -1, 0, 1000);
    parameters.set(46, 590);
    expect_scaled(find(exs_connections(parameters), 8), 300, 0x41500000, 7080.00048828125F);
}

TEST(ExsConnections, CutoffByKeyIsExactToTheBit) {
    for (const int amount : {-1000, -998, 100, 250, 400}) {
        ExsParameters parameters = plain();
        parameters.set(46, static_cast<std::int16_t>(amount));
        expect_scaled(find(exs_connections(parameters), 7), 300, 0x41500000,
                      static_cast<float>(12 * amount));
    }
}

TEST(ExsConnections, NewInstrumentHasVibratoAndAnEnvelopeAtNothing) {
    const auto connections = exs_connections(ExsParameters());
    expect_scaled(find(connections, 7), 0x20000001, 0x41500000, 0);
    expect_scaled(find(connections, 8), 0x10000000, 0x30B00000, 16.609542846679688F);
    EXPECT_EQ(find(connections, 8)->control, 1U);
}

TEST(ExsMatrix, DestinationsHaveTheirOwnUnits) {
    expect_scaled(slot(with_slot(8, 1, -1, 0, 400)), 1, 0x41500000, 4800);
    expect_scaled(slot(with_slot(9, 1, -1, 0, 991)), 1, 0x41600000, 39.6400032043457F);
    expect_scaled(slot(with_slot(16, 1, -1, 0, 500)), 1, 0x12A00000, 1);
    expect_scaled(slot(with_slot(6, 1, -1, 0, 1000)), 1, 0x30B00000, 1200);
}

TEST(ExsMatrix, NegativeAmountsStayNegative) {
    expect_scaled(slot(with_slot(6, 1, -1, 0, -500)), 1, 0x30B00000, -75);
    expect_scaled(slot(with_slot(8, 1, -1, 0, -1000)), 1, 0x41500000, -12000);
}

TEST(ExsMatrix, SourcesHaveTheSamplersCodes) {
    const std::pair<int, std::uint32_t> codes[] = {
        {-3, 301},         {-4, 300},         {-5, 224},         {-10, 321}, {-11, 320},
        {-12, 0x10000000}, {-13, 0x20000000}, {-14, 0x20000001}, {1, 1},     {127, 127},
    };
    for (const auto& [source, code] : codes) {
        expect_scaled(slot(with_slot(8, source, -1, 0, 1000)), code, 0x41500000, 12000);
    }
}

TEST(ExsMatrix, SlotWithoutAKnownDestinationIsLeftOut) {
    for (const int destination : {0, -1, 2, 5, 24, 1000}) {
        EXPECT_FALSE(slot(with_slot(destination, 1, -1, 0, 1000))) << destination;
    }
}

TEST(ExsMatrix, SlotWithoutAKnownSourceOrViaIsLeftOut) {
    for (const int source : {0, -1, -7, -18, 128, -1000}) {
        EXPECT_FALSE(slot(with_slot(8, source, -1, 0, 1000))) << source;
    }
    for (const int via : {-7, -18, 128}) {
        EXPECT_FALSE(slot(with_slot(8, 1, via, 0, 1000))) << via;
    }
}

TEST(ExsMatrix, SlotFromAnLfoThatStandsStillIsLeftOut) {
    const std::pair<int, std::uint16_t> lfos[] = {{-12, 61}, {-11, 63}, {-10, 167}};
    for (const auto& [source, rate] : lfos) {
        ExsParameters parameters = with_slot(8, source, -1, 0, 1000);
        EXPECT_TRUE(slot(parameters)) << source;
        parameters.set(rate, 34);
        EXPECT_FALSE(slot(parameters)) << source;
    }
}

TEST(ExsMatrix, ViaFromNothingGivesAScale) {
    const auto connection = slot(with_slot(8, -14, 1, 0, 400));
    expect_scaled(connection, 0x20000001, 0x41500000, 4800);
    EXPECT_EQ(connection->control, 1U);
}

TEST(ExsMatrix, ViaFromSomethingGivesARange) {
    const auto connection = slot(with_slot(8, -14, -3, 76, 400));
    expect_ranged(connection, 0x20000001, 0x41500000, 912.00006103515625F, 4800);
    EXPECT_EQ(connection->control, 301U);
}

TEST(ExsMatrix, ViaBetweenEqualAmountsControlsNothing) {
    const auto connection = slot(with_slot(8, -14, -3, 400, 400));
    expect_scaled(connection, 0x20000001, 0x41500000, 4800);
    EXPECT_EQ(connection->control, 0U);
}

TEST(ExsMatrix, WithoutAViaTheLowerAmountIsIgnored) {
    expect_scaled(slot(with_slot(8, -14, -1, 76, 400)), 0x20000001, 0x41500000, 4800);
    expect_scaled(slot(with_slot(8, -14, 0, 76, 400)), 0x20000001, 0x41500000, 4800);
}

TEST(ExsMatrix, NothingFromVelocityIsLeftOutNothingFromOthersStays) {
    EXPECT_FALSE(slot(with_slot(9, -3, -1, 0, 0)));
    expect_scaled(slot(with_slot(16, -11, -3, 0, 0)), 320, 0x12A00000, 0);
}

TEST(ExsMatrix, BypassedSlotIsLeftOut) {
    ExsParameters parameters = with_slot(8, 1, -1, 0, 1000);
    parameters.set(244, 1);
    EXPECT_FALSE(slot(parameters));
}

TEST(ExsMatrix, InvertedSourceInvertsTheConnection) {
    ExsParameters parameters = with_slot(8, 1, -1, 0, 1000);
    parameters.set(233, 1);
    EXPECT_TRUE(slot(parameters)->inverse);
}

TEST(ExsMatrix, InvertedViaExchangesTheAmounts) {
    ExsParameters parameters = with_slot(8, -14, -3, 500, 250);
    parameters.set(178, 1);
    expect_ranged(slot(parameters), 0x20000001, 0x41500000, 3000, 6000);
}

TEST(ExsMatrix, TwentySlotsInTheirOrder) {
    ExsParameters parameters = plain();
    for (std::uint16_t i = 0; i < 20; ++i) {
        const auto first = static_cast<std::uint16_t>(i < 10 ? 173 + 6 * i : 411 + 8 * (i - 10));
        parameters.set(first, 8);
        parameters.set(static_cast<std::uint16_t>(first + 1), static_cast<std::int16_t>(20 + i));
        parameters.set(static_cast<std::uint16_t>(first + 4), 1000);
    }
    const auto connections = exs_connections(parameters);
    ASSERT_EQ(connections.size(), 27U);
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(find(connections, 7 + i)->source, static_cast<std::uint32_t>(20 + i));
    }
}

TEST(ExsMatrix, FlagsOfTheSecondTenSlotsStandInTheSlot) {
    ExsParameters parameters = plain();
    for (const auto& [id, value] :
         {std::pair{411, 8}, {412, -14}, {413, -3}, {414, 250}, {415, 500}, {416, 1}, {417, 1}}) {
        parameters.set(static_cast<std::uint16_t>(id), static_cast<std::int16_t>(value));
    }
    expect_ranged(slot(parameters), 0x20000001, 0x41500000, 6000, 3000);
    EXPECT_TRUE(slot(parameters)->inverse);
    parameters.set(418, 1);
    EXPECT_FALSE(slot(parameters));
}

TEST(ExsConnections, ThoseThatMoveAnLfoOrEnvelopeAreWrittenFirstThoseFromThemLast) {
    ExsParameters parameters; // envelope 2 to cutoff, LFO to pitch
    parameters.set(82, 26);
    parameters.set(83, 63);
    parameters.set(46, 1000);
    std::vector<int> ids;
    for (const ExsConnection& connection : exs_connections(parameters)) {
        ids.push_back(connection.id);
    }
    EXPECT_EQ(ids, (std::vector<int>{7, 0, 1, 2, 3, 4, 6, 10, 9, 5, 8}));
}

TEST(ExsConnections, CodesOfALayerNameItOthersStay) {
    EXPECT_EQ(code::in_layer(0x20000001, 3), 0x20000301U);
    EXPECT_EQ(code::in_layer(0x30B00000, 1), 816840960U);
    EXPECT_EQ(code::in_layer(301, 3), 301U);
    EXPECT_EQ(code::in_layer(0, 3), 0U);
}

} // namespace
} // namespace lumo::platform
