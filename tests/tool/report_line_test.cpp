// The report line, byte for byte.
#include "report_line.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>

namespace {

using lumo::exs::Report;
using lumo::exs::report_line;
using lumo::exs::Shape;

Report full_report() {
    Report report;
    report.name = "Strings";
    report.source = "in/Strings.exs";
    report.ok = true;
    report.relink.relinked = {{"/old/C3.wav", "/new/C3.wav"}};
    report.samples = 1;
    report.sample_bytes = 1024;
    report.copied_bytes = 1024;
    report.state_file = "states/Strings.aupreset";
    report.load_ms = 12.0;
    report.shape.zones = 1;
    report.shape.lowest_key = 60;
    report.shape.highest_key = 60;
    Shape::Layer layer;
    layer.zones = 1;
    report.shape.layers = {layer};
    return report;
}

/// The text between `key` and the next key of the same object.
std::string value_after(const Report& report, const std::string& key, const std::string& next) {
    const std::string line = report_line(report);
    const std::size_t begin = line.find("\"" + key + "\":") + key.size() + 3;
    return line.substr(begin, line.find(",\"" + next + "\":") - begin);
}

TEST(ReportLine, OfAnImportHasAllValues) {
    EXPECT_EQ(report_line(full_report()),
              R"({"name":"Strings","source":"in/Strings.exs","ok":true,"error":"",)"
              R"("relinked":[{"from":"/old/C3.wav","to":"/new/C3.wav"}],"unresolved":[],)"
              R"("appleLibrary":[],"samples":1,"sampleBytes":1024,"copiedBytes":1024,)"
              R"("stateFile":"states/Strings.aupreset","loadMs":12.0,"shape":{"zones":1,)"
              R"("maxStack":1,"stackedPercent":0.0,"lowestKey":60,"highestKey":60,)"
              R"("layers":[{"name":"","zones":1,"loopedZones":0,"controllerChosen":false,)"
              R"("onRelease":false}]}})");
}

TEST(ReportLine, OfAnEmptyReportHasAllKeys) {
    EXPECT_EQ(report_line(Report()),
              R"({"name":"","source":"","ok":false,"error":"","relinked":[],"unresolved":[],)"
              R"("appleLibrary":[],"samples":0,"sampleBytes":0,"copiedBytes":0,"stateFile":"",)"
              R"("loadMs":0.0,"shape":{"zones":0,"maxStack":1,"stackedPercent":0.0,)"
              R"("lowestKey":127,"highestKey":0,"layers":[]}})");
}

TEST(ReportLine, OfAFailureKeepsItsErrorAndItsLists) {
    Report report;
    report.error = "a sample wasn't found: C3.wav";
    report.relink.unresolved = {"/old/C3.wav", "/old/D3.wav"};
    report.relink.apple_library = {"/Library/Audio/Apple Loops/x.caf"};
    EXPECT_EQ(value_after(report, "error", "relinked"), "\"a sample wasn't found: C3.wav\"");
    EXPECT_EQ(value_after(report, "unresolved", "appleLibrary"),
              R"(["/old/C3.wav","/old/D3.wav"])");
    EXPECT_EQ(value_after(report, "appleLibrary", "samples"),
              R"(["/Library/Audio/Apple Loops/x.caf"])");
}

TEST(ReportLine, SeparatesRedirectionsByCommas) {
    Report report;
    report.relink.relinked = {{"/a", "/b"}, {"/c", "/d"}};
    EXPECT_EQ(value_after(report, "relinked", "unresolved"),
              R"([{"from":"/a","to":"/b"},{"from":"/c","to":"/d"}])");
}

TEST(ReportLine, ListsEachLayer) {
    Report report;
    Shape::Layer layer;
    layer.name = "Soft \"pp\"";
    layer.zones = 12;
    layer.looped_zones = 3;
    layer.controller_chosen = true;
    report.shape.layers.push_back(layer);
    layer.controller_chosen = false;
    layer.on_release = true;
    report.shape.layers.push_back(layer);
    const std::string line = report_line(report);
    EXPECT_NE(line.find(R"("layers":[{"name":"Soft \"pp\"","zones":12,"loopedZones":3,)"
                        R"("controllerChosen":true,"onRelease":false},)"
                        R"({"name":"Soft \"pp\"","zones":12,"loopedZones":3,)"
                        R"("controllerChosen":false,"onRelease":true}]}})"),
              std::string::npos)
        << line;
}

TEST(ReportLine, EscapesWhatJsonDemandsAndNothingElse) {
    Report report;
    report.name = "\"\\\t\n\r\b\f\x01\x1f/\x7f\xc3\xa9\xff";
    EXPECT_EQ(value_after(report, "name", "source"),
              "\"\\\"\\\\\\t\\n\\u000d\\u0008\\u000c\\u0001\\u001f/\x7f\xc3\xa9\xff\"");
}

TEST(ReportLine, EscapesANul) {
    Report report;
    report.name = std::string("a\0b", 3);
    EXPECT_EQ(value_after(report, "name", "source"), "\"a\\u0000b\"");
}

TEST(ReportLine, WritesRealNumbersWithOneDecimal) {
    Report report;
    report.load_ms = 1234.56;
    report.shape.stacked_percent = 100.0 / 3;
    EXPECT_EQ(value_after(report, "loadMs", "shape"), "1234.6");
    EXPECT_EQ(value_after(report, "stackedPercent", "lowestKey"), "33.3");
    report.load_ms = 0.25;
    report.shape.stacked_percent = 0.75;
    EXPECT_EQ(value_after(report, "loadMs", "shape"), "0.2");
    EXPECT_EQ(value_after(report, "stackedPercent", "lowestKey"), "0.8");
}

TEST(ReportLine, WritesTheLargestAndTheSmallestNumbers) {
    Report report;
    report.samples = std::numeric_limits<std::uint64_t>::max();
    report.sample_bytes = std::numeric_limits<std::uint64_t>::max();
    report.shape.lowest_key = std::numeric_limits<std::int32_t>::min();
    EXPECT_EQ(value_after(report, "samples", "sampleBytes"), "18446744073709551615");
    EXPECT_EQ(value_after(report, "sampleBytes", "copiedBytes"), "18446744073709551615");
    EXPECT_EQ(value_after(report, "lowestKey", "highestKey"), "-2147483648");
}

} // namespace
