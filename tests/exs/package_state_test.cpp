// Resolving a state's references against the show package.
#include "list_values.h"
#include "references.h"
#include "support/temp_folder.h"
#include <lumo/exs.h>

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using namespace lumo::test;
using lumo::exs::References;
using lumo::exs::references;

Value state_with(const References& paths) {
    return adopt(
        lumo::exs::with_references(dictionary({{"name", text("Test")}}).get(), paths).release());
}

struct Resolved {
    Value state;
    std::string error = "untouched";

    Resolved(const Value& input, const std::string& package) {
        state = adopt(lumo::exs::resolve_package_state(input.get(), package, error));
    }
};

class PackageState : public testing::Test {
protected:
    void SetUp() override { write_file(folder / "samples/a.wav", "a"); }

    TempFolder folder;
    std::string package = folder.path().string();
};

TEST_F(PackageState, WithoutReferencesGainsAnEmptyDictionary) {
    const Resolved resolved(dictionary({{"name", text("Test")}}), package);
    const Value expected =
        dictionary({{"name", text("Test")}, {"file-references", dictionary({})}});
    ASSERT_TRUE(resolved.state);
    EXPECT_TRUE(CFEqual(resolved.state.get(), expected.get()));
    EXPECT_EQ(resolved.error, "untouched");
}

TEST_F(PackageState, RefersToTheFilesThroughThePackage) {
    const Resolved resolved(state_with({{"Sample:1", "samples/a.wav"}}), package);
    ASSERT_TRUE(resolved.state);
    EXPECT_EQ(references(resolved.state.get()),
              (References{{"Sample:1", package + "/samples/a.wav"}}));
    EXPECT_EQ(resolved.error, "untouched");
}

TEST_F(PackageState, DoublesNoSeparator) {
    const Resolved resolved(state_with({{"Sample:1", "samples/a.wav"}}), package + "/");
    ASSERT_TRUE(resolved.state);
    EXPECT_EQ(references(resolved.state.get()),
              (References{{"Sample:1", package + "/samples/a.wav"}}));
}

TEST_F(PackageState, IsACopy) {
    const Value state = state_with({{"Sample:1", "samples/a.wav"}});
    const Resolved resolved(state, package);
    EXPECT_EQ(references(state.get()), (References{{"Sample:1", "samples/a.wav"}}));
}

TEST_F(PackageState, RefusesAnAbsolutePathEvenOfAFileThatExists) {
    const std::string path = package + "/samples/a.wav";
    const Resolved resolved(state_with({{"Sample:1", path}}), package);
    EXPECT_FALSE(resolved.state);
    EXPECT_EQ(resolved.error, "not a path in the show: " + path);
}

TEST_F(PackageState, RefusesAnEmptyPath) {
    const Resolved resolved(state_with({{"Sample:1", ""}}), package);
    EXPECT_FALSE(resolved.state);
    EXPECT_EQ(resolved.error, "not a path in the show: ");
}

TEST_F(PackageState, RefusesAMissingFile) {
    const Resolved resolved(state_with({{"Sample:1", "samples/b.wav"}}), package);
    EXPECT_FALSE(resolved.state);
    EXPECT_EQ(resolved.error, "missing from the show: " + package + "/samples/b.wav");
}

TEST_F(PackageState, NamesTheFirstFaultInTheOrderOfTheKeys) {
    const Resolved missing_first(
        state_with({{"Sample:1", "samples/b.wav"}, {"Sample:2", "/Users/x/a.wav"}}), package);
    EXPECT_EQ(missing_first.error, "missing from the show: " + package + "/samples/b.wav");
    const Resolved absolute_first(
        state_with({{"Sample:3", "samples/b.wav"}, {"Sample:2", "/Users/x/a.wav"}}), package);
    EXPECT_EQ(absolute_first.error, "not a path in the show: /Users/x/a.wav");
}

TEST_F(PackageState, LooksInTheCurrentFolderWhenThePackageIsEmpty) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    const Resolved resolved(state_with({{"Sample:1", "samples/a.wav"}}), "");
    const Resolved missing(state_with({{"Sample:1", "samples/b.wav"}}), "");
    std::filesystem::current_path(before);
    ASSERT_TRUE(resolved.state);
    EXPECT_EQ(references(resolved.state.get()), (References{{"Sample:1", "samples/a.wav"}}));
    EXPECT_EQ(missing.error, "missing from the show: samples/b.wav");
}

TEST_F(PackageState, AcceptsAFolder) {
    const Resolved resolved(state_with({{"Sample:1", "samples"}}), package);
    EXPECT_TRUE(resolved.state);
}

TEST_F(PackageState, JoinsAPathThatClimbsOutAsItStands) {
    const Resolved resolved(state_with({{"Sample:1", "../no such file"}}), package);
    EXPECT_EQ(resolved.error, "missing from the show: " + package + "/../no such file");
}

TEST_F(PackageState, DropsAReferenceThatIsNoText) {
    const Value state = dictionary({{"file-references", values_of_every_kind("samples/a.wav")}});
    const Resolved resolved(state, package);
    ASSERT_TRUE(resolved.state);
    EXPECT_TRUE(CFEqual(entry(resolved.state, "file-references").get(),
                        dictionary({{"text", text(package + "/samples/a.wav")}}).get()));
}

} // namespace
