// Unless a test has set up a fake, the real poll is called.
#include "fake_poll.h"

#include <dlfcn.h>

#include <utility>

namespace lumo::test {
namespace {

FakePoll* fake = nullptr;

} // namespace

FakePoll::FakePoll(std::function<int(int call)> action) : action_(std::move(action)) {
    fake = this;
}

FakePoll::~FakePoll() {
    fake = nullptr;
}

int FakePoll::wait(int timeout_ms) {
    timeouts_ms.push_back(timeout_ms);
    return action_(static_cast<int>(timeouts_ms.size()));
}

} // namespace lumo::test

int poll(pollfd* files, nfds_t count, int timeout_ms) {
    if (lumo::test::fake != nullptr) {
        return lumo::test::fake->wait(timeout_ms);
    }
    static const auto real_poll = reinterpret_cast<decltype(&poll)>(dlsym(RTLD_NEXT, "poll"));
    return real_poll(files, count, timeout_ms);
}
