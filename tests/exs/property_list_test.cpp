// Reading numbers from property lists, and writing property lists to files.
#include "fake_transfers.h"
#include "list_values.h"
#include "property_list.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

namespace {

using namespace lumo::test;
using lumo::exs::integer;
using lumo::exs::write_plist;

int integer_of(const Value& value, int default_value) {
    return integer(as_dictionary(dictionary({{"key", value}})), "key", default_value);
}

TEST(Integer, OfAMissingKeyIsTheDefault) {
    EXPECT_EQ(integer(as_dictionary(dictionary({})), "min key", 127), 127);
}

TEST(Integer, IsTheNumber) {
    EXPECT_EQ(integer_of(whole(-5), 127), -5);
}

TEST(Integer, LosesTheFractionOfARealTowardZero) {
    EXPECT_EQ(integer_of(real(3.7), 0), 3);
    EXPECT_EQ(integer_of(real(-2.5), 0), -2);
}

TEST(Integer, OfABooleanIsOneOrZeroWhateverTheDefault) {
    EXPECT_EQ(integer_of(boolean(true), 127), 1);
    EXPECT_EQ(integer_of(boolean(false), 127), 0);
}

TEST(Integer, OfAnyOtherTypeIsTheDefault) {
    EXPECT_EQ(integer_of(text("5"), 7), 7);
    EXPECT_EQ(integer_of(data("5"), 7), 7);
    EXPECT_EQ(integer_of(dictionary({}), 7), 7);
    EXPECT_EQ(integer_of(array({whole(5)}), 7), 7);
}

TEST(WritePlist, WritesTheBinaryFormat) {
    const TempFolder folder;
    EXPECT_TRUE(write_plist(dictionary({{"gain", real(-3.5)}}).get(), folder / "state"));
    EXPECT_EQ(read_file(folder / "state").substr(0, 8), "bplist00");
}

TEST(WritePlist, WritesWhatReadsBackEqual) {
    const TempFolder folder;
    const Value list = dictionary({{"a", array({whole(1), real(0.5), boolean(true)})},
                                   {"b", text("\xc3\xa9")},
                                   {"c", data("bytes")}});
    ASSERT_TRUE(write_plist(list.get(), folder / "state"));
    const Value read = list_in(folder / "state");
    ASSERT_TRUE(read);
    EXPECT_TRUE(CFEqual(read.get(), list.get()));
}

TEST(WritePlist, OverwritesAFileWhole) {
    const TempFolder folder;
    write_file(folder / "state", std::string(5000, 'x'));
    ASSERT_TRUE(write_plist(dictionary({}).get(), folder / "state"));
    ASSERT_TRUE(write_plist(dictionary({}).get(), folder / "fresh"));
    EXPECT_EQ(read_file(folder / "state"), read_file(folder / "fresh"));
}

TEST(WritePlist, KeepsAFileWhereAsked) {
    const TempFolder folder;
    ASSERT_TRUE(write_plist(dictionary({}).get(), folder / "state", O_EXCL));
    const std::string state = read_file(folder / "state");
    EXPECT_FALSE(write_plist(dictionary({{"gain", real(1)}}).get(), folder / "state", O_EXCL));
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(read_file(folder / "state"), state);
}

TEST(WritePlist, IntoAMissingFolderCreatesNothing) {
    const TempFolder folder;
    EXPECT_FALSE(write_plist(dictionary({}).get(), folder / "missing/state"));
    EXPECT_FALSE(std::filesystem::exists(folder / "missing"));
}

TEST(WritePlist, OfWhatCannotBeSerialisedTouchesNothing) {
    const TempFolder folder;
    write_file(folder / "state", "as it was");
    const std::string path = "/kick.wav";
    const Value url = adopt(CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(path.data()),
        static_cast<CFIndex>(path.size()), false));
    errno = 0;
    EXPECT_FALSE(write_plist(dictionary({{"url", url}}).get(), folder / "state"));
    EXPECT_EQ(errno, EINVAL);
    EXPECT_FALSE(write_plist(dictionary({{"url", url}}).get(), folder / "new"));
    EXPECT_EQ(read_file(folder / "state"), "as it was");
    EXPECT_FALSE(std::filesystem::exists(folder / "new"));
}

TEST(WritePlist, LeavesItsFileToWhomTheUmaskSays) {
    const TempFolder folder;
    const auto mode_with = [&](mode_t mask) {
        const mode_t before = umask(mask);
        EXPECT_TRUE(write_plist(dictionary({}).get(), folder / "state"));
        umask(before);
        const auto mode = std::filesystem::status(folder / "state").permissions();
        std::filesystem::remove(folder / "state");
        return static_cast<unsigned>(mode);
    };
    EXPECT_EQ(mode_with(0), 0666u);
    EXPECT_EQ(mode_with(027), 0640u);
}

TEST(WritePlist, GoesOnAfterAShortWrite) {
    const TempFolder folder;
    const Value list = dictionary({{"name", text("Test")}});
    ASSERT_TRUE(write_plist(list.get(), folder / "whole"));
    const std::string whole = read_file(folder / "whole");
    for (const std::size_t limit : {std::size_t{1}, std::size_t{7}, whole.size() - 1}) {
        FakeTransfers writes(Transfer::write, [&](int) { return limit; });
        EXPECT_TRUE(write_plist(list.get(), folder / "state"));
        EXPECT_EQ(writes.calls, static_cast<int>((whole.size() + limit - 1) / limit));
        EXPECT_EQ(read_file(folder / "state"), whole) << limit;
    }
}

TEST(WritePlist, FailsWhereNothingMoreIsWritten) {
    const TempFolder folder;
    FakeTransfers writes(Transfer::write, [](int call) { return call < 3 ? std::size_t{5} : 0; });
    EXPECT_FALSE(write_plist(dictionary({}).get(), folder / "state"));
    EXPECT_EQ(writes.calls, 3);
    EXPECT_EQ(read_file(folder / "state").size(), 10u);
}

TEST(WritePlist, SeesThatTheDiskIsFull) {
    if (!std::filesystem::exists("/dev/full")) {
        GTEST_SKIP() << "this system has no /dev/full";
    }
    EXPECT_FALSE(write_plist(dictionary({{"name", text("Test")}}).get(), "/dev/full"));
}

} // namespace
