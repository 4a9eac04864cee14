// A write controlled by a test, linked in place of the real one.
#pragma once

#include <cstddef>
#include <functional>

namespace lumo::test {

/// Replaces write as long as the object exists.
class FakeWrite {
public:
    /// `limit` is called for each call, with its number, from 1; the call writes at most as many
    /// bytes as it returns.
    explicit FakeWrite(std::function<std::size_t(int call)> limit);
    ~FakeWrite();
    FakeWrite(const FakeWrite&) = delete;
    FakeWrite& operator=(const FakeWrite&) = delete;

    /// The limit of the next call.
    std::size_t next() { return limit_(++calls); }

    int calls = 0;

private:
    std::function<std::size_t(int call)> limit_;
};

} // namespace lumo::test
