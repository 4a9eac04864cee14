// A read and a write controlled by a test, linked in place of the real ones.
#pragma once

#include <cstddef>
#include <functional>

namespace lumo::test {

enum class Transfer { read, write };

/// Limits the calls of read or of write as long as the object exists.
class FakeTransfers {
public:
    /// `limit` is called for each call, with its number, from 1; the call reads or writes at most
    /// as many bytes as it returns.
    FakeTransfers(Transfer kind, std::function<std::size_t(int call)> limit);
    ~FakeTransfers();
    FakeTransfers(const FakeTransfers&) = delete;
    FakeTransfers& operator=(const FakeTransfers&) = delete;

    /// The limit of the next call.
    std::size_t next() { return limit_(++calls); }

    int calls = 0;

private:
    FakeTransfers*& current_;
    std::function<std::size_t(int call)> limit_;
};

} // namespace lumo::test
