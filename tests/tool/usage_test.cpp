// Command line errors: the tool prints its usage, exits with status 1 and does nothing else.
#include "tool_fixture.h"

namespace {

using namespace lumo::test;

const std::string usage = "usage: lumo-exs-import --package SHOW.lumo --states FOLDER "
                          "[--search FOLDER]... INSTRUMENT...\n";

class Usage : public ToolTest {
protected:
    void expect_usage(const std::vector<std::string>& arguments) {
        const ImportRun run = run_import(arguments, folder.path());
        EXPECT_EQ(run.process.status, 1);
        EXPECT_EQ(run.process.out, "");
        EXPECT_EQ(run.process.err, usage);
        EXPECT_FALSE(std::filesystem::exists(folder / "P"));
        EXPECT_FALSE(std::filesystem::exists(folder / "S"));
    }
};

TEST_F(Usage, IsShownWithoutArguments) {
    expect_usage({});
}

TEST_F(Usage, IsShownWithoutAnInstrument) {
    expect_usage({"--package", "P", "--states", "S"});
}

TEST_F(Usage, IsShownForAnOptionWithoutItsValueAfterAnInstrument) {
    make_preset("a.aupreset");
    expect_usage({"--package", "P", "--states", "S", "a.aupreset", "--search"});
}

TEST_F(Usage, IsShownForAnUnknownOption) {
    make_preset("a.aupreset");
    expect_usage({"--package", "P", "--states", "S", "--verbose", "a.aupreset"});
}

TEST_F(Usage, IsShownWhenAnOptionSwallowsAnother) {
    expect_usage({"--package", "--states", "S", "x.exs"});
}

} // namespace
