// Reading a preset from a pipe. No test waits: a fake poll decides how each wait ends.
#include "fake_poll.h"
#include "preset_file.h"
#include "support/temp_folder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace lumo::test;

constexpr int out_of_time = 0; ///< the result of poll at a timeout
constexpr int ready = 1;

class PresetPipe : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(mkfifo(path.c_str(), 0600), 0); }
    void TearDown() override { close_writer(); }

    // Opened for reading too, as a pipe without a reader cannot be opened for writing only. The
    // additional reader does not affect the first.
    void open_writer() {
        writer = open(path.c_str(), O_RDWR | O_CLOEXEC);
        ASSERT_GE(writer, 0);
    }

    void write_bytes(std::string_view bytes) const {
        ASSERT_EQ(write(writer, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }

    void close_writer() {
        if (writer >= 0) {
            close(writer);
            writer = -1;
        }
    }

    std::string read() const {
        const std::vector<unsigned char> bytes = lumo::exs::read_preset(path);
        return {bytes.begin(), bytes.end()};
    }

    TempFolder folder;
    std::string path = (folder / "preset").string();
    int writer = -1;
};

TEST_F(PresetPipe, WithoutAWriterForThreeSecondsIsEmpty) {
    FakePoll poll([](int) { return out_of_time; });
    EXPECT_EQ(read(), "");
    EXPECT_EQ(poll.timeouts_ms, (std::vector<int>{3000}));
}

TEST_F(PresetPipe, WithAWriterThatPausesIsWaitedForWithoutLimit) {
    open_writer();
    FakePoll poll([&](int call) {
        switch (call) {
        case 1:
            return out_of_time;
        case 2:
            write_bytes("one ");
            return ready;
        default:
            write_bytes("two");
            close_writer();
            return ready;
        }
    });
    EXPECT_EQ(read(), "one two");
    EXPECT_EQ(poll.timeouts_ms, (std::vector<int>{3000, -1, -1}));
}

TEST_F(PresetPipe, WhoseWriterComesLateIsReadToItsEnd) {
    FakePoll poll([&](int) {
        open_writer();
        write_bytes("preset");
        close_writer();
        return ready;
    });
    // A pipe keeps its bytes as long as it is open; here the reader has opened it.
    EXPECT_EQ(read(), "preset");
}

TEST_F(PresetPipe, WhoseWriterLeavesWithoutAWordIsEmpty) {
    open_writer();
    FakePoll poll([&](int call) {
        if (call == 1) {
            return out_of_time;
        }
        close_writer();
        return ready;
    });
    EXPECT_EQ(read(), "");
    EXPECT_EQ(poll.timeouts_ms, (std::vector<int>{3000, -1}));
}

TEST_F(PresetPipe, WhoseWriterIsDoneEndsWithoutAWait) {
    // As with the shell's <(...), when the program inside has already ended.
    open_writer();
    write_bytes("preset");
    FakePoll poll([&](int) {
        close_writer();
        return ready;
    });
    EXPECT_EQ(read(), "preset");
    EXPECT_EQ(poll.timeouts_ms, (std::vector<int>{3000}));
}

} // namespace
