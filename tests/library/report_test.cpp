// Report lines, and files of them.
#include "line_splitter.h"
#include "lines_file.h"
#include "report.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

namespace {

using namespace lumo::library;
using namespace lumo::test;

constexpr const char* line =
    R"({"name":"Kit","source":"lib/Kit.exs","ok":true,"error":"","relinked":[{"from":"/old/a.wav",)"
    R"("to":"new/a.wav"}],"unresolved":["/gone/b.wav"],"appleLibrary":["/Library/c.caf"],)"
    R"("samples":2,"sampleBytes":5000000000,"copiedBytes":7,"stateFile":"st/Kit.aupreset",)"
    R"("loadMs":1.5,"shape":{"zones":3,"maxStack":2,"stackedPercent":39.3,"lowestKey":36,)"
    R"("highestKey":96,"layers":[{"name":"L","zones":3,"loopedZones":1,"controllerChosen":true,)"
    R"("onRelease":false}]}})";

TEST(Report, HasAllThatALineSays) {
    const auto report = parse_report(line);
    ASSERT_TRUE(report);
    EXPECT_EQ(report->name, "Kit");
    EXPECT_EQ(report->source, "lib/Kit.exs");
    EXPECT_TRUE(report->ok);
    EXPECT_EQ(report->error, "");
    ASSERT_EQ(report->relinked.size(), 1U);
    EXPECT_EQ(report->relinked[0].first, "/old/a.wav");
    EXPECT_EQ(report->relinked[0].second, "new/a.wav");
    EXPECT_EQ(report->unresolved, std::vector<std::string>{"/gone/b.wav"});
    EXPECT_EQ(report->apple_library, std::vector<std::string>{"/Library/c.caf"});
    EXPECT_EQ(report->samples, 2U);
    EXPECT_EQ(report->sample_bytes, 5000000000U);
    EXPECT_EQ(report->copied_bytes, 7U);
    EXPECT_EQ(report->state_file, "st/Kit.aupreset");
    EXPECT_EQ(report->load_ms, 1.5);
    EXPECT_EQ(report->shape.zones, 3);
    EXPECT_EQ(report->shape.max_stack, 2);
    EXPECT_EQ(report->shape.stacked_percent, 39.3);
    EXPECT_EQ(report->shape.lowest_key, 36);
    EXPECT_EQ(report->shape.highest_key, 96);
    ASSERT_EQ(report->shape.layers.size(), 1U);
    EXPECT_EQ(report->shape.layers[0].name, "L");
    EXPECT_EQ(report->shape.layers[0].looped_zones, 1);
    EXPECT_TRUE(report->shape.layers[0].controller_chosen);
}

TEST(Report, KeepsBytesThatAreNoUtf8AndEscapedOnes) {
    std::string text = line;
    text.replace(text.find("lib/Kit.exs"), 11, "lib/\xff\\u001b\\\"\\\\\xe9.exs");
    const auto report = parse_report(text);
    ASSERT_TRUE(report);
    EXPECT_EQ(report->source, "lib/\xff\x1b\"\\\xe9.exs");
}

TEST(Report, IsNothingForWhatIsNoWholeLine) {
    const std::string whole = line;
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_FALSE(parse_report(whole.substr(0, size))) << size;
    }
    EXPECT_FALSE(parse_report("{}"));
    EXPECT_FALSE(parse_report("[]"));
    EXPECT_FALSE(parse_report("12"));
    std::string wrong = whole;
    wrong.replace(wrong.find("true"), 4, "\"yes\"");
    EXPECT_FALSE(parse_report(wrong));
}

/// The line with `part`, which it contains once, replaced.
std::string line_with(const std::string& part, const std::string& other) {
    std::string text = line;
    return text.replace(text.find(part), part.size(), other);
}

TEST(Report, IgnoresUnknownKeysWithAllTheyContain) {
    const std::string more = R"("new":[1,null,"name",{"name":[true,{}],"zones":-1.5}],"ok":true)";
    const auto report = parse_report(line_with("\"ok\":true", more));
    ASSERT_TRUE(report);
    EXPECT_EQ(report->name, "Kit");
    EXPECT_TRUE(parse_report(
        line_with("\"zones\":3,\"maxStack\"", "\"zones\":3,\"new\":null,\"old\":{},\"maxStack\"")));
}

TEST(Report, IsNothingForALineWithOtherTypesOrARepeatedKey) {
    using Change = std::pair<const char*, const char*>;
    for (const auto& [part, other] : {
             Change(R"("name":"Kit")", R"("name":null)"),
             Change(R"("name":"Kit")", R"("name":["Kit"])"),
             Change(R"("name":"Kit")", R"("name":"Kit","name":"Kit")"),
             Change(R"([{"from":"/old/a.wav","to":"new/a.wav"}])", R"([["/old/a.wav"]])"),
             Change(R"([{"from":"/old/a.wav","to":"new/a.wav"}])", R"(["/old/a.wav"])"),
             Change(R"("/old/a.wav","to")", R"("/old/a.wav","for")"),
             Change(R"(["/gone/b.wav"])", R"("/gone/b.wav")"),
             Change(R"(["/gone/b.wav"])", R"([["/gone/b.wav"]])"),
             Change(R"(["/gone/b.wav"])", R"([{}])"),
             Change(R"("samples":2)", R"("samples":"2")"),
             Change(R"("samples":2)", R"("samples":2.5)"),
             Change(R"("shape":{)", R"("shape":[{)"),
             Change(R"("layers":[{)", R"("layers":[1,{)"),
             Change(R"("layers":[{"name":"L",)", R"("layers":[{)"),
         }) {
        EXPECT_FALSE(parse_report(line_with(part, other))) << other;
    }
}

TEST(Report, IsNothingForOtherJson) {
    const std::string whole = line;
    for (const std::string& other :
         {whole + "x", whole + whole, '[' + whole + ']', "[" + whole, std::string("null"),
          std::string("true"), std::string("1.5"), std::string("\"Kit\"")}) {
        EXPECT_FALSE(parse_report(other)) << other;
    }
    EXPECT_TRUE(parse_report(' ' + whole + '\r'));
}

TEST(Report, IsNothingForALineWithANumberThatIsTooLarge) {
    for (const char* number : {"18446744073709551616", "1e999"}) {
        EXPECT_FALSE(parse_report(line_with("5000000000", number))) << number;
    }
    const auto report = parse_report(line_with("5000000000", "18446744073709551615"));
    ASSERT_TRUE(report);
    EXPECT_EQ(report->sample_bytes, 18446744073709551615U);
}

TEST(Report, OfAnInstrumentAtWhichTheToolEndedIsALineToo) {
    const auto report = parse_report(line_without_import("lib/\xff.exs", "it \"ended\""));
    ASSERT_TRUE(report);
    EXPECT_EQ(report->name, "\xff");
    EXPECT_EQ(report->source, "lib/\xff.exs");
    EXPECT_FALSE(report->ok);
    EXPECT_EQ(report->error, "it \"ended\"");
}

TEST(Report, HasTheInitialValuesOfALineWithoutAnImport) {
    const auto line_values = parse_report(line_without_import("", ""));
    ASSERT_TRUE(line_values);
    for (const Report& report : {*line_values, Report()}) {
        EXPECT_FALSE(report.ok);
        EXPECT_EQ(report.samples, 0U);
        EXPECT_EQ(report.sample_bytes, 0U);
        EXPECT_EQ(report.copied_bytes, 0U);
        EXPECT_EQ(report.load_ms, 0);
        EXPECT_EQ(report.shape.zones, 0);
        EXPECT_EQ(report.shape.max_stack, 1);
        EXPECT_EQ(report.shape.stacked_percent, 0);
        EXPECT_EQ(report.shape.lowest_key, 127);
        EXPECT_EQ(report.shape.highest_key, 0);
        EXPECT_TRUE(report.shape.layers.empty());
    }
}

TEST(LineSplitter, CutsPiecesOfAnySizeIntoTheSameLines) {
    const std::string text = "one\n\nthree is longer\nrest";
    for (std::size_t size = 1; size <= text.size(); ++size) {
        LineSplitter splitter;
        std::vector<std::string> lines;
        for (std::size_t at = 0; at < text.size(); at += size) {
            splitter.add(std::string_view(text).substr(at, size),
                         [&](std::string_view one) { lines.emplace_back(one); });
        }
        EXPECT_EQ(lines, (std::vector<std::string>{"one", "", "three is longer"})) << size;
        EXPECT_EQ(splitter.rest(), "rest") << size;
    }
}

class LinesFileTest : public testing::Test {
protected:
    std::vector<std::string> sources() {
        std::vector<std::string> found;
        result = read_lines_file(
            path, [&](Report&& report) { found.push_back(std::move(report.source)); });
        return found;
    }

    TempFolder folder;
    std::string path = folder / "lines";
    LinesRead result;
    const std::string good = line_without_import("a.exs", "no") + '\n';
    const std::string other = line_without_import("b.exs", "no");
};

TEST_F(LinesFileTest, IsReadLineByLine) {
    write_file(path, good + other + '\n');
    EXPECT_EQ(sources(), (std::vector<std::string>{"a.exs", "b.exs"}));
    EXPECT_EQ(result.fault, "");
    EXPECT_EQ(result.unknown, 0U);
}

TEST_F(LinesFileTest, ATornLastLineIsPassedOver) {
    write_file(path, good + other.substr(0, other.size() / 2));
    EXPECT_EQ(sources(), std::vector<std::string>{"a.exs"});
    EXPECT_EQ(result.unknown, 0U);
}

TEST_F(LinesFileTest, LinesThatAreNoneAreCounted) {
    write_file(path, "notes\n" + good + "\n{}\n");
    EXPECT_EQ(sources(), std::vector<std::string>{"a.exs"});
    EXPECT_EQ(result.unknown, 2U);
}

TEST_F(LinesFileTest, SaysWhyItCannotBeRead) {
    sources();
    EXPECT_EQ(result.fault, "No such file or directory");
    path = folder.path();
    sources();
    EXPECT_EQ(result.fault, "Is a directory");
}

TEST_F(LinesFileTest, AppendsBehindATornLineAndNotToIt) {
    write_file(path, good + "{\"name\":\"to");
    LinesFile file;
    ASSERT_EQ(file.open(path), "");
    ASSERT_EQ(file.append(other), "");
    EXPECT_EQ(read_file(path), good + "{\"name\":\"to\n" + other + '\n');
    EXPECT_EQ(sources(), (std::vector<std::string>{"a.exs", "b.exs"}));
}

TEST_F(LinesFileTest, AppendsBehindATornLineOfOneByte) {
    write_file(path, "{");
    LinesFile file;
    ASSERT_EQ(file.open(path), "");
    ASSERT_EQ(file.append(other), "");
    EXPECT_EQ(read_file(path), "{\n" + other + '\n');
}

TEST_F(LinesFileTest, HasAllPermissionsThatTheMaskAllows) {
    const mode_t mask = umask(0);
    LinesFile file;
    EXPECT_EQ(file.open(path), "");
    umask(mask);
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms{0666});
}

TEST_F(LinesFileTest, SaysWhyItCannotBeWritten) {
    LinesFile file;
    EXPECT_EQ(file.open(folder / "none/lines"), "No such file or directory");
#ifdef __linux__
    ASSERT_EQ(file.open("/dev/full"), "");
    EXPECT_EQ(file.append("x"), "No space left on device");
#endif
}

} // namespace
