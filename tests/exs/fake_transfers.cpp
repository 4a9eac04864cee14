// Unless a test has set up a fake, the real functions are called.
#include "fake_transfers.h"

#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace lumo::test {
namespace {

FakeTransfers* reads = nullptr;
FakeTransfers* writes = nullptr;

std::size_t limited(std::size_t size, FakeTransfers* current) {
    return current != nullptr ? std::min(size, current->next()) : size;
}

} // namespace

FakeTransfers::FakeTransfers(Transfer kind, std::function<std::size_t(int call)> limit)
    : current_(kind == Transfer::read ? reads : writes), limit_(std::move(limit)) {
    current_ = this;
}

FakeTransfers::~FakeTransfers() {
    current_ = nullptr;
}

} // namespace lumo::test

ssize_t read(int file, void* bytes, std::size_t size) {
    static const auto real_read = reinterpret_cast<decltype(&read)>(dlsym(RTLD_NEXT, "read"));
    return real_read(file, bytes, lumo::test::limited(size, lumo::test::reads));
}

ssize_t write(int file, const void* bytes, std::size_t size) {
    static const auto real_write = reinterpret_cast<decltype(&write)>(dlsym(RTLD_NEXT, "write"));
    return real_write(file, bytes, lumo::test::limited(size, lumo::test::writes));
}
