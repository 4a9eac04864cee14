// A poll controlled by a test, linked in place of the real one.
#pragma once

#include <poll.h>

#include <functional>
#include <vector>

namespace lumo::test {

/// Replaces poll and records its timeouts as long as the object exists.
class FakePoll {
public:
    /// `action` is called instead of waiting, with the number of the call, from 1; poll returns its
    /// result.
    explicit FakePoll(std::function<int(int call)> action);
    ~FakePoll();
    FakePoll(const FakePoll&) = delete;
    FakePoll& operator=(const FakePoll&) = delete;

    int wait(int timeout_ms);

    /// The timeout of each call in milliseconds; -1: no limit.
    std::vector<int> timeouts_ms;

private:
    std::function<int(int call)> action_;
};

} // namespace lumo::test
