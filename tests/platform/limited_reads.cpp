// A function that the program defines takes precedence over the C library's function of that name.
// The system call does the actual read.
#include "limited_reads.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>

namespace lumo::test {
namespace {

std::size_t limit_at_once = no_limit;
std::size_t left_in_all = no_limit;
std::size_t given = 0;
std::size_t max_room = 0;

ssize_t limited_read(int file, void* bytes, std::size_t size) {
    max_room = std::max(max_room, given + size);
    const std::size_t allowed = std::min({size, limit_at_once, left_in_all});
    const ssize_t count = syscall(SYS_read, file, bytes, allowed);
    if (count > 0) {
        given += static_cast<std::size_t>(count);
        left_in_all -= static_cast<std::size_t>(count);
    }
    return count;
}

} // namespace

LimitedReads::LimitedReads(std::size_t at_once, std::size_t in_all) {
    limit_at_once = at_once;
    left_in_all = in_all;
    given = 0;
    max_room = 0;
}

LimitedReads::~LimitedReads() {
    limit_at_once = no_limit;
    left_in_all = no_limit;
}

std::size_t LimitedReads::room() const {
    return max_room;
}

} // namespace lumo::test

extern "C" __attribute__((visibility("default"))) ssize_t read(int file, void* bytes,
                                                               std::size_t size) {
    return lumo::test::limited_read(file, bytes, size);
}
