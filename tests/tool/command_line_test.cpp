// Parsed and refused command lines.
#include "command_line.h"

#include <gtest/gtest.h>

namespace {

using lumo::exs::CommandLine;
using Texts = std::vector<std::string>;

std::optional<CommandLine> parse(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "lumo-exs-import");
    return lumo::exs::parse_command_line(static_cast<int>(arguments.size()), arguments.data());
}

TEST(CommandLine, GivesPackageStatesSearchFoldersAndInstruments) {
    const auto line = parse(
        {"--package", "P", "a.exs", "--search", "y", "--states", "S", "b.exs", "--search", "x"});
    ASSERT_TRUE(line);
    EXPECT_EQ(line->options.package, "P");
    EXPECT_EQ(line->options.states, "S");
    EXPECT_EQ(line->options.index, nullptr);
    EXPECT_EQ(line->search, (Texts{"y", "x"}));
    EXPECT_EQ(line->instruments, (Texts{"a.exs", "b.exs"}));
}

TEST(CommandLine, KeepsDuplicatesInTheirOrder) {
    const auto line = parse({"--package", "P", "--states", "S", "a.exs", "b.exs", "a.exs",
                             "--search", "x", "--search", "x"});
    ASSERT_TRUE(line);
    EXPECT_EQ(line->instruments, (Texts{"a.exs", "b.exs", "a.exs"}));
    EXPECT_EQ(line->search, (Texts{"x", "x"}));
}

TEST(CommandLine, UsesTheLastPackageAndTheLastStates) {
    const auto line =
        parse({"--package", "A", "--states", "S", "--package", "B", "--states", "T", "a.exs"});
    ASSERT_TRUE(line);
    EXPECT_EQ(line->options.package, "B");
    EXPECT_EQ(line->options.states, "T");
}

TEST(CommandLine, TakesWhateverFollowsAnOptionAsItsValue) {
    const auto line = parse({"--package", "--states", "--states", "--search", "a.exs"});
    ASSERT_TRUE(line);
    EXPECT_EQ(line->options.package, "--states");
    EXPECT_EQ(line->options.states, "--search");
}

TEST(CommandLine, TakesASingleDashAsAnInstrument) {
    const auto line = parse({"--package", "P", "--states", "S", "-x", "-"});
    ASSERT_TRUE(line);
    EXPECT_EQ(line->instruments, (Texts{"-x", "-"}));
}

TEST(CommandLine, IsRefusedWithoutArguments) {
    EXPECT_FALSE(parse({}));
    EXPECT_FALSE(lumo::exs::parse_command_line(0, nullptr));
}

TEST(CommandLine, IsRefusedWithoutInstruments) {
    EXPECT_FALSE(parse({"--package", "P", "--states", "S"}));
    EXPECT_FALSE(parse({"--package", "P", "--states", "S", "--search", "x"}));
}

TEST(CommandLine, IsRefusedWithoutAPackageOrStates) {
    EXPECT_FALSE(parse({"--states", "S", "a.exs"}));
    EXPECT_FALSE(parse({"--package", "P", "a.exs"}));
    EXPECT_FALSE(parse({"--package", "", "--states", "S", "a.exs"}));
    EXPECT_FALSE(parse({"--package", "P", "--states", "", "a.exs"}));
    EXPECT_FALSE(parse({"--package", "P", "--package", "", "--states", "S", "a.exs"}));
}

TEST(CommandLine, IsRefusedWithAnOptionThatLacksItsValue) {
    EXPECT_FALSE(parse({"--package", "P", "--states", "S", "a.exs", "--search"}));
    EXPECT_FALSE(parse({"--package", "P", "a.exs", "--states"}));
}

TEST(CommandLine, IsRefusedWithAnUnknownOption) {
    EXPECT_FALSE(parse({"--package", "P", "--states", "S", "--verbose", "a.exs"}));
    EXPECT_FALSE(parse({"--package", "P", "--states", "S", "--", "a.exs"}));
    EXPECT_FALSE(parse({"--package=P", "--states", "S", "a.exs"}));
    EXPECT_FALSE(parse({"--Package", "P", "--states", "S", "a.exs"}));
}

TEST(CommandLine, TakesAnOptionsNameAsAValueAndMissesTheOption) {
    EXPECT_FALSE(parse({"--package", "--states", "S", "x.exs"}));
}

TEST(CommandLine, HasAUsageTextOfOneLine) {
    EXPECT_EQ(std::string(lumo::exs::usage),
              "usage: lumo-exs-import --package SHOW.lumo --states FOLDER [--search FOLDER]... "
              "INSTRUMENT...\n");
}

Texts roots(const Texts& instruments, const Texts& search) {
    CommandLine line;
    line.instruments = instruments;
    line.search = search;
    return lumo::exs::root_folders(line);
}

TEST(RootFolders, AreThoseOfTheInstrumentsAndTheSearchFoldersOnceEach) {
    EXPECT_EQ(roots({"d/a.exs", "d/b.exs"}, {"d"}), Texts{"d"});
}

TEST(RootFolders, AreInAscendingByteOrder) {
    EXPECT_EQ(roots({"b/x.exs", "/a/x.exs"}, {"\xc3\xa9", "Z", "a"}),
              (Texts{"/a", "Z", "a", "b", "\xc3\xa9"}));
}

TEST(RootFolders, HoldTheEmptyOneForAnInstrumentWithoutAFolder) {
    EXPECT_EQ(roots({"a.exs"}, {"d"}), (Texts{"", "d"}));
}

TEST(RootFolders, AreTakenAsTheyAreSpelled) {
    EXPECT_EQ(roots({"a/b/x.exs", "./a/b/x.exs"}, {"a/b/"}), (Texts{"./a/b", "a/b", "a/b/"}));
}

} // namespace
