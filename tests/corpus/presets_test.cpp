// Presets that the real AUSampler saved, imported by the built tool.
#include "corpus/corpus_folder.h"
#include "exs/list_values.h"
#include "support/import_run.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;
using namespace lumo::test;
using nlohmann::json;

/// The manifest lists this template as a property list. Its references contain a bare word, a
/// placeholder, and CoreFoundation refuses text there.
const std::string unfilled_template = "aupreset/templates/Template.aupreset";

/// One run of the tool over all presets, shared by all tests.
class CorpusPresets : public testing::Test {
protected:
    struct Show {
        TempFolder folder;
        std::vector<json> expected;
        std::vector<json> reports;
    };

    static void SetUpTestSuite() {
        std::ifstream stream(corpus / "expected.json");
        if (!stream) {
            return;
        }
        show = new Show;
        std::vector<std::string> arguments = {"--package", (show->folder / "Show.lumo").string(),
                                              "--states",  (show->folder / "states").string(),
                                              "--search",  corpus.string()};
        for (const json& entry : json::parse(stream)) {
            const std::string name = entry["instrument"];
            if (name.ends_with(".aupreset")) {
                show->expected.push_back(entry);
                arguments.push_back((corpus / name).string());
            }
        }
        show->reports = run_import(arguments).lines;
    }

    static void TearDownTestSuite() {
        delete show;
        show = nullptr;
    }

    void SetUp() override {
        if (!show) {
            GTEST_SKIP() << "there are no real instruments at " << corpus;
        }
        ASSERT_FALSE(show->expected.empty());
        ASSERT_EQ(show->reports.size(), show->expected.size());
    }

    static Show* show;
};

CorpusPresets::Show* CorpusPresets::show = nullptr;

json totals(const json& shape) {
    int looped_zones = 0;
    for (const json& layer : shape["layers"]) {
        looped_zones += layer["loopedZones"].get<int>();
    }
    return {{"zones", shape["zones"]},
            {"layers", shape["layers"].size()},
            {"looped_zones", looped_zones},
            {"lowest_key", shape["lowestKey"]},
            {"highest_key", shape["highestKey"]}};
}

json file_names(const json& paths) {
    json names = json::array();
    for (const json& path : paths) {
        names.push_back(fs::path(path.get<std::string>()).filename().string());
    }
    return names;
}

TEST_F(CorpusPresets, HaveTheResultsInTheManifest) {
    for (std::size_t i = 0; i < show->reports.size(); ++i) {
        const json& expected = show->expected[i];
        const json& report = show->reports[i];
        if (expected["instrument"] == unfilled_template) {
            EXPECT_EQ(report["error"], "the preset isn't a property list");
            continue;
        }
        EXPECT_EQ(report["ok"], expected["ok"]) << report;
        EXPECT_EQ(report["samples"], expected["samples"]) << report;
        const std::string error = report["error"];
        EXPECT_TRUE(error.starts_with(expected.value("error_starts", ""))) << report;
        EXPECT_EQ(error.empty(), expected["ok"].get<bool>()) << report;
        if (expected.contains("shape")) {
            EXPECT_EQ(totals(report["shape"]), expected["shape"]) << report;
        }
        EXPECT_EQ(file_names(report["unresolved"]),
                  expected.value("unresolved_names", json::array()));
    }
}

TEST_F(CorpusPresets, GiveStatesWhoseReferencesLieInTheShow) {
    for (const json& report : show->reports) {
        if (report["ok"] != true) {
            continue;
        }
        const std::string path = report["stateFile"];
        EXPECT_EQ(read_file(path).substr(0, 8), "bplist00");
        const Value state = list_in(path);
        ASSERT_TRUE(state) << path;
        EXPECT_TRUE(
            CFEqual(entry(state, "Instrument").get(),
                    entry(list_in(report["source"].get<std::string>()), "Instrument").get()))
            << path;
    }
}

TEST_F(CorpusPresets, GiveStatesThatPythonReadsEqual) {
    if (run_process({"python3", "--version"}).status != 0) {
        GTEST_SKIP() << "there is no python3";
    }
    for (const json& report : show->reports) {
        if (report["ok"] == true) {
            const ProcessResult check = run_process(
                {"python3", std::string(LUMO_SOURCE) + "/tests/corpus/check_state.py",
                 report["stateFile"], report["source"], (show->folder / "Show.lumo").string()});
            EXPECT_EQ(check.status, 0) << check.out << check.err;
        }
    }
}

TEST_F(CorpusPresets, GiveStatesThatPlistutilReads) {
    if (run_process({"plistutil", "--version"}).status != 0) {
        GTEST_SKIP() << "there is no plistutil";
    }
    for (const json& report : show->reports) {
        if (report["ok"] == true) {
            const ProcessResult check = run_process({"plistutil", "-i", report["stateFile"]});
            EXPECT_EQ(check.status, 0) << check.err;
            EXPECT_NE(check.out.find("<key>Instrument</key>"), std::string::npos);
        }
    }
}

} // namespace
