// The process of the tool, as which a shell runs.
#include "support/temp_folder.h"
#include "tool_process.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace lumo::library {
namespace {

TEST(ToolProcess, EndsWithItsObject) {
    const test::TempFolder folder;
    const std::filesystem::path ended = folder / "ended";
    {
        ToolProcess shell({"/bin/sh", "-c",
                           "trap ': >\"$0\"; exit' TERM; echo ready; "
                           "for second in $(seq 600); do sleep 1; done",
                           ended.string()});
        bool is_ready = false;
        while (!is_ready && shell.has_output()) {
            shell.read_output([&](std::string_view line) { is_ready = line == "ready"; },
                              [](std::string_view) {});
        }
        EXPECT_TRUE(is_ready);
        EXPECT_FALSE(std::filesystem::exists(ended));
    }
    EXPECT_TRUE(std::filesystem::exists(ended));
}

} // namespace
} // namespace lumo::library
