// Tests of every shim: it reaches an indexed file for a sample that is not at its recorded path,
// and does nothing else. Without a shim, the test with its name fails.
#include "shims.h"

#include <dirent.h>
#include <limits.h>

#include <thread>

namespace lumo::exs {
namespace {

TEST_P(TheShimOf, ReachesTheIndexedFile) {
    const std::string gone = (folder / "gone/kick.wav").string();
    relink::begin(index);
    errno = untouched;
    const bool has_sample = GetParam().has_sample(gone.c_str());
    const int error = errno;
    const relink::Result result = relink::end();
    EXPECT_TRUE(has_sample);
    EXPECT_EQ(error, untouched);
    ASSERT_EQ(result.relinked.size(), 1u);
    EXPECT_EQ(result.relinked[0].first, gone);
    EXPECT_EQ(result.relinked[0].second, (folder / "library/kick.wav").string());
}

TEST_P(TheShimOf, RecordsASampleThatIsNowhere) {
    const std::string gone = (folder / "gone/tom.wav").string();
    relink::begin(index);
    const bool has_sample = GetParam().has_sample(gone.c_str());
    const int error = errno;
    const relink::Result result = relink::end();
    EXPECT_FALSE(has_sample);
    EXPECT_EQ(error, ENOENT);
    EXPECT_EQ(result.unresolved, std::vector<std::string>{gone});
}

TEST_P(TheShimOf, LeavesASampleThatIsThere) {
    relink::begin(index);
    const bool has_sample = GetParam().has_sample((folder / "library/kick.wav").c_str());
    const relink::Result result = relink::end();
    EXPECT_TRUE(has_sample);
    EXPECT_TRUE(result.relinked.empty() && result.unresolved.empty());
}

TEST_P(TheShimOf, DoesNothingWithoutASession) {
    EXPECT_TRUE(GetParam().has_sample((folder / "library/kick.wav").c_str()));
    EXPECT_FALSE(GetParam().has_sample((folder / "gone/kick.wav").c_str()));
    EXPECT_EQ(errno, ENOENT);
}

TEST_P(TheShimOf, PassesOverWhatIsNoSample) {
    relink::begin(index);
    EXPECT_FALSE(GetParam().has_sample((folder / "gone/kick.txt").c_str()));
    const relink::Result result = relink::end();
    EXPECT_TRUE(result.relinked.empty() && result.unresolved.empty());
}

TEST_P(TheShimOf, IsUsedByManyThreads) {
    if (std::string(GetParam().name) == "clonefile") {
        return; // all threads would make the same file; its shim calls redirect, as all shims do
    }
    relink::begin(index);
    std::vector<std::thread> threads;
    std::array<int, 8> found{};
    for (std::size_t i = 0; i < found.size(); ++i) {
        threads.emplace_back([&, i] {
            for (int n = 0; n < 20; ++n) {
                const std::string name = "gone" + std::to_string(n) + "/kick.wav";
                found[i] += GetParam().has_sample((folder / name).c_str());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const relink::Result result = relink::end();
    for (const int count : found) {
        EXPECT_EQ(count, 20);
    }
    EXPECT_EQ(result.relinked.size(), 20u);
}

INSTANTIATE_TEST_SUITE_P(Function, TheShimOf, testing::ValuesIn(shims()),
                         [](const auto& test) { return test.param.name; });

TEST_F(TheShimsOf, ReadlinkGivesTheTextOfAnIndexedLink) {
    const test::TempFolder links;
    fs::create_symlink(folder / "library/kick.wav", links / "snare.wav");
    index.add_root(links.path().string());
    std::array<char, PATH_MAX> text{};
    relink::begin(index);
    const ssize_t length =
        readlink((folder / "gone/snare.wav").c_str(), text.data(), text.size() - 1);
    const relink::Result result = relink::end();
    EXPECT_GT(length, 0);
    EXPECT_EQ(std::string(text.data()), (folder / "library/kick.wav").string());
    EXPECT_EQ(result.relinked.size(), 1u);
}

// The library resolves the link itself; its calls arrive at its own shims.
TEST_F(TheShimsOf, AllLeaveALinkThatIsThere) {
    const std::string link = (folder / "links/snare.wav").string();
    fs::create_directory(folder / "links");
    fs::create_symlink(folder / "library/kick.wav", link);
    relink::begin(index);
    for (const Shim& shim : shims()) {
        EXPECT_NO_THROW(shim.has_sample(link.c_str())) << shim.name;
    }
    const relink::Result result = relink::end();
    EXPECT_TRUE(result.relinked.empty() && result.unresolved.empty());
}

TEST_F(TheShimsOf, OpendirRecordsTheSampleAndOpensNoFileAsAFolder) {
    const std::string gone = (folder / "gone/kick.wav").string();
    relink::begin(index);
    DIR* const opened = opendir(gone.c_str());
    const int error = errno;
    const relink::Result result = relink::end();
    EXPECT_EQ(opened, nullptr);
    EXPECT_EQ(error, ENOTDIR);
    ASSERT_EQ(result.relinked.size(), 1u);
    EXPECT_EQ(result.relinked[0].first, gone);
}

} // namespace
} // namespace lumo::exs
