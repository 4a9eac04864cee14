// The tool imports every real EXS24 instrument with the result listed beside the instruments.
#include "corpus/corpus_folder.h"
#include "support/import_run.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace lumo::test {
namespace {

using nlohmann::json;

json import(const std::string& instrument) {
    const TempFolder folder;
    return import_one(folder / "Show.lumo", folder / "states", corpus / instrument,
                      {"--search", corpus.string()});
}

std::vector<std::string> names_of(const json& paths) {
    std::vector<std::string> names;
    for (const json& path : paths) {
        names.push_back(std::filesystem::path(path.get<std::string>()).filename().string());
    }
    std::ranges::sort(names);
    return names;
}

int looped_zones(const json& shape) {
    int zones = 0;
    for (const json& layer : shape.at("layers")) {
        zones += layer.at("loopedZones").get<int>();
    }
    return zones;
}

void expect_shape(const json& expected, const json& shape) {
    EXPECT_EQ(shape.at("zones"), expected.at("zones"));
    EXPECT_EQ(shape.at("layers").size(), expected.at("layers"));
    EXPECT_EQ(looped_zones(shape), expected.at("looped_zones"));
    EXPECT_EQ(shape.at("lowestKey"), expected.at("lowest_key"));
    EXPECT_EQ(shape.at("highestKey"), expected.at("highest_key"));
}

void expect_outcome(const json& expected, const json& report) {
    const std::string error = report.at("error");
    EXPECT_EQ(report.at("ok"), expected.at("ok")) << error;
    EXPECT_EQ(error, expected.value("error", error));
    EXPECT_TRUE(error.starts_with(expected.value("error_starts", std::string()))) << error;
    EXPECT_EQ(names_of(report.at("unresolved")),
              expected.value("unresolved_names", std::vector<std::string>()));
    EXPECT_EQ(report.at("samples"), expected.value("samples", 0));
    if (expected.contains("shape")) {
        expect_shape(expected.at("shape"), report.at("shape"));
    }
}

TEST(CorpusExs, EachInstrumentEndsAsListed) {
    if (!std::filesystem::exists(corpus)) {
        GTEST_SKIP() << "there are no real instruments at " << corpus;
    }
    int instruments = 0;
    for (const json& expected : json::parse(read_file(corpus / "expected.json"))) {
        const std::string instrument = expected.at("instrument");
        if (instrument.ends_with(".exs")) {
            SCOPED_TRACE(instrument);
            expect_outcome(expected, import(instrument));
            ++instruments;
        }
    }
    EXPECT_GE(instruments, 11);
}

TEST(CorpusExs, OneLineListsAllSamplesThatAreMissing) {
    const std::string instrument = "exs/without-audio/MultiArp110rr+.exs";
    if (!std::filesystem::exists(corpus / instrument)) {
        GTEST_SKIP() << "there are no real instruments at " << corpus;
    }
    EXPECT_EQ(import(instrument).at("unresolved").size(), 444U);
}

} // namespace
} // namespace lumo::test
