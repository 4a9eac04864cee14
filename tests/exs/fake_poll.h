// A poll that waits, or does as a test says, linked in place of the real one.
#pragma once

#include <poll.h>

#include <functional>
#include <vector>

namespace lumo::test {

/// What poll does, and what it was asked, until the end of a test's scope.
class FakePoll {
public:
    /// `action` is called in place of a wait, with the number of the call, from 1; what it returns
    /// poll returns.
    explicit FakePoll(std::function<int(int call)> action);
    ~FakePoll();
    FakePoll(const FakePoll&) = delete;
    FakePoll& operator=(const FakePoll&) = delete;

    int wait(int timeout_ms);

    /// How long each call was to wait at most, in milliseconds; -1 is without limit.
    std::vector<int> timeouts_ms;

private:
    std::function<int(int call)> action_;
};

} // namespace lumo::test
