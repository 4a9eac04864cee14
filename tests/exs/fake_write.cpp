// Unless a test has set up a fake, the real write is called.
#include "fake_write.h"

#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace lumo::test {
namespace {

FakeWrite* fake = nullptr;

} // namespace

FakeWrite::FakeWrite(std::function<std::size_t(int call)> limit) : limit_(std::move(limit)) {
    fake = this;
}

FakeWrite::~FakeWrite() {
    fake = nullptr;
}

} // namespace lumo::test

ssize_t write(int file, const void* bytes, std::size_t size) {
    static const auto real_write = reinterpret_cast<decltype(&write)>(dlsym(RTLD_NEXT, "write"));
    if (lumo::test::fake != nullptr) {
        size = std::min(size, lumo::test::fake->next());
        return size == 0 ? 0 : real_write(file, bytes, size);
    }
    return real_write(file, bytes, size);
}
