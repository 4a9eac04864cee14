// The example instrument imports as the README shows, and its files are those that its scripts
// make.
#include "support/run_process.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <cstddef>

namespace lumo::test {
namespace {

const std::filesystem::path source = LUMO_SOURCE;

/// A folder with a copy of the examples, in which the README's commands can run.
class ExampleFolder {
public:
    ExampleFolder() {
        std::filesystem::create_directories(folder_ / "examples");
        std::filesystem::copy(source / "examples/glass", folder_ / "examples/glass");
    }

    std::filesystem::path operator/(std::string_view name) const { return folder_ / name; }

    /// The standard output of the README's command for an instrument.
    std::string import(const std::string& instrument) const {
        return run_process({LUMO_TOOL, "--package", "Show.lumo", "--states", "Show.lumo/states",
                            "examples/glass/" + instrument},
                           folder_.path())
            .out;
    }

private:
    TempFolder folder_;
};

std::string without_load_time(std::string line) {
    const std::size_t begin = line.find("\"loadMs\":");
    if (begin != std::string::npos) {
        line.erase(begin, line.find(',', begin) - begin);
    }
    return line;
}

/// The first line of `text` that starts with `start`, with its newline; empty when there is none.
std::string line_that_starts_with(const std::string& text, const std::string& start) {
    const std::size_t before = text.find("\n" + start);
    if (before == std::string::npos) {
        return {};
    }
    const std::size_t end = text.find('\n', before + 1);
    return text.substr(before + 1, end - before);
}

TEST(Example, ItsScriptsMakeItsFiles) {
    const TempFolder folder;
    for (const char* script : {"make_glass.py", "make_exs.py"}) {
        const ProcessResult made =
            run_process({"python3", source / "examples" / script, folder.path()});
        ASSERT_EQ(made.status, 0) << script << ": " << made.err;
    }
    for (const auto& kept : std::filesystem::directory_iterator(source / "examples/glass")) {
        const std::string name = kept.path().filename();
        EXPECT_EQ(read_file(folder / name), read_file(kept.path())) << name;
    }
}

TEST(Example, IsImportedWithTheSamplesBesideIt) {
    const ExampleFolder folder;
    const std::string line = folder.import("Glass.aupreset");
    EXPECT_NE(line.find("\"ok\":true,\"error\":\"\""), std::string::npos) << line;
    EXPECT_NE(line.find("\"samples\":3,"), std::string::npos) << line;
    for (const char* name : {"glass-soft.wav", "glass-hard.wav", "breath.wav"}) {
        EXPECT_EQ(read_file(folder / "Show.lumo/samples/glass" / name),
                  read_file(source / "examples/glass" / name))
            << name;
    }
}

TEST(Example, PrintsTheLinesThatTheReadmeShows) {
    const ExampleFolder folder;
    const std::string readme = read_file(source / "README.md");
    EXPECT_EQ(without_load_time(folder.import("Glass.aupreset")),
              without_load_time(line_that_starts_with(readme, "{\"name\":\"Glass\"")));
    EXPECT_EQ(without_load_time(folder.import("Glass Chimes.exs")),
              without_load_time(line_that_starts_with(readme, "{\"name\":\"Glass Chimes\"")));
}

} // namespace
} // namespace lumo::test
