// Sessions in a process with several threads.
#include "session_fixture.h"

#include <unistd.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <thread>

namespace lumo::exs {
namespace {

using test::read_file;

TEST_F(Session, MayEndWhileOtherThreadsLookUp) {
    std::atomic<bool> is_over = false;
    std::atomic<int> wrong = 0;
    std::thread other([&] {
        while (!is_over) {
            const std::string bytes = read_file(path("gone/kick.wav"));
            wrong += bytes.empty() || bytes == "the kick" ? 0 : 1;
        }
    });
    for (int i = 0; i < 200; ++i) {
        const auto own = std::make_unique<SampleIndex>(index);
        relink::begin(*own);
        read_file(path("gone/snare.wav"));
        const relink::Result result = relink::end();
        EXPECT_LE(result.relinked.size(), 2u);
        EXPECT_TRUE(result.unresolved.empty());
    }
    is_over = true;
    other.join();
    EXPECT_EQ(wrong, 0);
}

TEST_F(Session, AcceptsLookUpsFromSeveralThreads) {
    constexpr int rounds = 200;
    relink::begin(index);
    std::atomic<int> redirected = 0;
    std::array<std::thread, 4> threads;
    for (std::thread& thread : threads) {
        thread = std::thread([&] {
            for (int round = 0; round < rounds; ++round) {
                const std::string file = "gone/" + std::to_string(round);
                redirected += read_file(path(file + "/kick.wav")) == "the kick" ? 1 : 0;
                redirected += access(path(file + "/tom.wav").c_str(), F_OK) != 0 ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const relink::Result result = relink::end();
    EXPECT_EQ(redirected, 4 * rounds * 2);
    EXPECT_EQ(result.relinked.size(), static_cast<std::size_t>(rounds));
    EXPECT_EQ(result.unresolved.size(), static_cast<std::size_t>(rounds));
}

} // namespace
} // namespace lumo::exs
