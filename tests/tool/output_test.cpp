// Report lines are available at once, and a run ends when its output has no reader.
#include "support/child_process.h"
#include "tool_fixture.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <thread>

namespace {

namespace fs = std::filesystem;
using namespace lumo::test;
using nlohmann::json;

/// Returns when all bytes in a pipe have been read.
void wait_until_read(int pipe) {
    for (int left = 1; ioctl(pipe, FIONREAD, &left) == 0 && left > 0;) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

class Output : public ToolTest {
protected:
    bool is_whole_state(const std::string& name) const {
        const ImportRun run = run_import({"--package", (folder / "Check.lumo").string(), "--states",
                                          (folder / "check").string(), (states / name).string()},
                                         package);
        return run.lines.size() == 1 && run.lines[0]["ok"] == true;
    }
};

TEST_F(Output, OfAnInstrumentIsThereBeforeTheNextOneIsRead) {
    const std::string slow = (folder / "slow.aupreset").string();
    ASSERT_EQ(mkfifo(slow.c_str(), 0600), 0);
    // The second preset's bytes are in the pipe, but it does not end before this is closed.
    const int writer = open(slow.c_str(), O_RDWR | O_CLOEXEC);
    const std::string preset = preset_text({});
    ASSERT_EQ(write(writer, preset.data(), preset.size()), static_cast<ssize_t>(preset.size()));
    Pipe out;
    ChildProcess tool(command({make_preset("fast.aupreset"), slow}), out.writing_end);
    out.close_writing_end();
    EXPECT_EQ(json::parse(out.read_line())["name"], "fast");
    wait_until_read(writer); // before the tool opens the pipe, closing would lose the bytes
    close(writer);
    const json second = json::parse(out.read_line());
    EXPECT_EQ(second["name"], "slow");
    EXPECT_EQ(second["ok"], true) << second;
    EXPECT_EQ(tool.wait(), 0);
}

TEST_F(Output, WithoutAReaderEndsTheRunBySigpipe) {
    Pipe out;
    out.close_reading_end(); // before the tool can write its first line
    const std::string kick = make_sound("Kit/kick.wav");
    ChildProcess tool(command({make_preset("a.aupreset", {kick}), make_preset("b.aupreset")}),
                      out.writing_end);
    out.close_writing_end();
    EXPECT_EQ(tool.wait(), -SIGPIPE);
    EXPECT_TRUE(is_whole_state("a.aupreset"));
    EXPECT_EQ(read_file(package / "samples/Kit/kick.wav"), wav_bytes(100));
    EXPECT_FALSE(fs::exists(states / "b.aupreset"));
}

TEST_F(Output, IntoAFullDiskIsPassedOver) {
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    if (full < 0) {
        GTEST_SKIP() << "this system has no /dev/full";
    }
    const std::string kick = make_sound("Kit/kick.wav");
    ChildProcess tool(
        command({make_preset("a.aupreset", {kick}), make_preset("b.aupreset", {kick})}), full);
    close(full);
    EXPECT_EQ(tool.wait(), 0);
    EXPECT_TRUE(is_whole_state("a.aupreset"));
    EXPECT_TRUE(is_whole_state("b.aupreset"));
}

TEST_F(Output, ThatIsClosedDamagesNothing) {
    const std::string kick = make_sound("Kit/kick.wav");
    ChildProcess tool(
        command({make_preset("a.aupreset", {kick}), make_preset("b.aupreset", {kick})}), -1);
    EXPECT_EQ(tool.wait(), 0);
    EXPECT_TRUE(is_whole_state("a.aupreset"));
    EXPECT_TRUE(is_whole_state("b.aupreset"));
    EXPECT_EQ(read_file(package / "samples/Kit/kick.wav"), wav_bytes(100));
}

} // namespace
