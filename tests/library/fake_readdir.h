// A readdir controlled by a test, linked in place of the real one.
#pragma once

namespace lumo::test {

/// As long as the object exists, readdir reports no types, as on file systems that have none, and
/// fails with EIO after the last entry if requested.
class FakeReaddir {
public:
    explicit FakeReaddir(bool fails_at_end);
    ~FakeReaddir();
    FakeReaddir(const FakeReaddir&) = delete;
    FakeReaddir& operator=(const FakeReaddir&) = delete;
};

} // namespace lumo::test
