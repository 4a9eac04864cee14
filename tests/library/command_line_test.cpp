// The command line: accepted and refused arguments, and suggestions.
#include "command_line.h"
#include "tool_process.h"
#include "tool_run.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <utility>

namespace {

using namespace lumo::library;
using Words = std::vector<std::string>;

std::variant<CommandLine, Answer> parse(const Words& words) {
    std::vector<const char*> pointers = {"lumo-import-library"};
    for (const std::string& word : words) {
        pointers.push_back(word.c_str());
    }
    return parse_command_line(static_cast<int>(pointers.size()), pointers.data());
}

CommandLine taken(const Words& words) {
    const auto parsed = parse(words);
    if (const auto* answer = std::get_if<Answer>(&parsed)) {
        ADD_FAILURE() << answer->text;
        return {};
    }
    return std::get<CommandLine>(parsed);
}

std::string refused(const Words& words) {
    const auto parsed = parse(words);
    const auto* answer = std::get_if<Answer>(&parsed);
    EXPECT_TRUE(answer && answer->status == 1);
    return answer ? answer->text.substr(0, answer->text.find('\n')) : "";
}

Words with_show(const Words& words) {
    Words all = {"--package", "S.lumo", "--states", "st"};
    all.insert(all.end(), words.begin(), words.end());
    return all;
}

TEST(CommandLine, TakesEveryOption) {
    const CommandLine line =
        taken(with_show({"--search", "a", "lib", "--search=b", "--lines", "l", "--continue", "c",
                         "--shard", "2/8", "--dry-run", "kit.exs"}));
    EXPECT_EQ(line.package, "S.lumo");
    EXPECT_EQ(line.states, "st");
    EXPECT_EQ(line.search, (Words{"a", "b"}));
    EXPECT_EQ(line.lines, "l");
    EXPECT_EQ(line.continue_file, "c");
    EXPECT_EQ(line.shard.number, 2U);
    EXPECT_EQ(line.shard.of, 8U);
    EXPECT_TRUE(line.is_dry_run);
    EXPECT_EQ(line.arguments, (Words{"lib", "kit.exs"}));
    EXPECT_EQ(taken({"--from", "a", "b"}).from, (Words{"a", "b"}));
}

TEST(CommandLine, WritesPathsSoThatTheToolTakesThemForPaths) {
    const CommandLine line =
        taken(with_show({"--search=-s/", "--", "lib//", "-x.exs", "--y", "/"}));
    EXPECT_EQ(line.arguments, (Words{"lib", "./-x.exs", "./--y", "/"}));
    EXPECT_EQ(line.search, Words{"./-s"});
}

TEST(CommandLine, RefusesWhatMakesNoRun) {
    EXPECT_EQ(refused({}), "lumo-import-library: --package SHOW.lumo is missing");
    EXPECT_EQ(refused({"--package", "", "x"}),
              "lumo-import-library: --package SHOW.lumo is missing");
    EXPECT_EQ(refused({"--package", "p", "x"}), "lumo-import-library: --states FOLDER is missing");
    EXPECT_EQ(refused(with_show({})),
              "lumo-import-library: name a folder with instruments, or instruments");
    EXPECT_EQ(refused({"--from", "f", "--dry-run"}),
              "lumo-import-library: --from imports nothing: --dry-run does not go with it");
    EXPECT_NE(refused(with_show({"x", "--lines"})), "");
    for (const char* shard :
         {"0/2", "3/2", "1/0", "1", "/2", "1/", "a/b", "1/2x", "-1/2", "1/2/3", "1/4294967296"}) {
        EXPECT_EQ(refused(with_show({"--shard", shard, "x"})),
                  "lumo-import-library: --shard takes K/N with K from 1 to N, such as 2/8")
            << shard;
    }
}

TEST(CommandLine, SuggestsTheOptionThatMayHaveBeenMeant) {
    EXPECT_EQ(refused(with_show({"--serach", "x"})),
              "lumo-import-library: there is no option --serach; did you mean --search?");
    EXPECT_EQ(refused(with_show({"--line=f", "x"})),
              "lumo-import-library: there is no option --line=f; did you mean --lines?");
    EXPECT_EQ(refused(with_show({"--searc", "x"})), // closer to --search than to --shard
              "lumo-import-library: there is no option --searc; did you mean --search?");
    EXPECT_EQ(refused(with_show({"--quite-another", "x"})),
              "lumo-import-library: there is no option --quite-another");
}

TEST(CommandLine, SuggestsAnOptionUpToThreeCharactersAway) {
    for (const char* word : {"--continuexyz", "--xyzcontinue", "--conti", "--cntiu", "--xyztinue",
                             "--contixyz", "--coxyzinue", "--cxontiynuze"}) {
        EXPECT_EQ(refused(with_show({word, "x"})), "lumo-import-library: there is no option " +
                                                       std::string(word) +
                                                       "; did you mean --continue?");
    }
    for (const char* word :
         {"--continuewxyz", "--wxyzcontinue", "--cont", "--wxyzinue", "--contwxyz", "--cwxyznue"}) {
        EXPECT_EQ(refused(with_show({word, "x"})),
                  "lumo-import-library: there is no option " + std::string(word));
    }
}

TEST(CommandLine, AnswersHelpAndVersion) {
    const Answer help = std::get<Answer>(parse({"--help"}));
    EXPECT_EQ(help.status, 0);
    for (const char* word :
         {"usage: lumo-import-library", "\n  --package SHOW.lumo ", "\n  --states FOLDER ",
          "\n  --search FOLDER ", "\n  --page FILE.html ", "\n  --lines FILE ",
          "\n  --continue FILE ", "\n  --shard K/N ", "\n  --from FILE ", "Exit status:"}) {
        EXPECT_NE(help.text.find(word), std::string::npos) << word;
    }
    const Answer version = std::get<Answer>(parse({"--version"}));
    EXPECT_EQ(version.status, 0);
    EXPECT_TRUE(version.text.starts_with("lumo-import-library "));
}

TEST(ToolCommand, SearchesTheSameFoldersInEveryCall) {
    EXPECT_EQ(tool_command("/bin/tool", "S", "st", {"more"}, {"kit/a.exs", "b.exs", "/", "kit"}),
              (Words{"/bin/tool", "--package", "S", "--states", "st", "--search", "", "--search",
                     "/", "--search", "kit", "--search", "more"}));
}

TEST(ToolCommand, IsCutToTheRoomThatThereIs) {
    const Words instruments(10, "12345678901"); // 12 bytes with the NUL, and a pointer
    const std::size_t one = size_as_argument(instruments[0]);
    EXPECT_EQ(one, 12 + sizeof(char*));
    EXPECT_EQ(fitting(instruments, 0, 3 * one), 3U);
    EXPECT_EQ(fitting(instruments, 0, 3 * one - 1), 2U);
    EXPECT_EQ(fitting(instruments, 8, 3 * one), 2U);
    EXPECT_EQ(fitting(instruments, 0, 0), 1U);
}

#ifdef __linux__
TEST(ToolCommand, HasTheRoomOfTheSystemsLimitUpTo2MiB) {
    std::size_t taken = 4096;
    for (char** entry = environ; *entry; ++entry) {
        taken += size_as_argument(*entry);
    }
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_STACK, &before), 0);
    for (const auto& [stack, limit] : {std::pair<rlim_t, std::size_t>{2 << 20, 512 << 10},
                                       {8 << 20, 2 << 20},
                                       {12 << 20, 2 << 20}}) {
        const rlimit stack_limit{stack, before.rlim_max}; // four times that for arguments
        ASSERT_EQ(setrlimit(RLIMIT_STACK, &stack_limit), 0);
        EXPECT_EQ(room_for_arguments(), limit - taken);
    }
    EXPECT_EQ(setrlimit(RLIMIT_STACK, &before), 0);
}
#endif

} // namespace
