// Ownership of file descriptors, and system calls that a signal interrupts.
#include "base/descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <utility>
#include <vector>

namespace lumo {
namespace {

int open_null() {
    return open("/dev/null", O_RDONLY | O_CLOEXEC);
}

bool is_open(int descriptor) {
    return fcntl(descriptor, F_GETFD) != -1;
}

/// The result of a call that fails with these errors in turn and then returns `last`, and the
/// number of times it is made.
std::pair<int, std::size_t> calls(const std::vector<int>& errors, int last) {
    std::size_t count = 0;
    const int result = uninterrupted([&] {
        if (count == errors.size()) {
            ++count;
            return last;
        }
        errno = errors[count++];
        return -1;
    });
    return {result, count};
}

TEST(Descriptor, IsClosedWithItsOwner) {
    int number = -1;
    {
        const Descriptor file(open_null());
        number = file.get();
        ASSERT_TRUE(file);
        EXPECT_TRUE(is_open(number));
    }
    EXPECT_FALSE(is_open(number));
}

TEST(Descriptor, IsNoneBelowZero) {
    EXPECT_FALSE(Descriptor());
    EXPECT_FALSE(Descriptor(-1));
    EXPECT_EQ(Descriptor().get(), -1);
    Descriptor zero(0); // standard input
    EXPECT_TRUE(zero);
    EXPECT_EQ(zero.release(), 0);
}

TEST(Descriptor, MovesToAnotherOwner) {
    Descriptor first(open_null());
    const int number = first.get();
    Descriptor second(std::move(first));
    EXPECT_EQ(second.get(), number);
    EXPECT_TRUE(is_open(number));
    Descriptor third(open_null());
    const int replaced = third.get();
    third = std::move(second);
    EXPECT_EQ(third.get(), number);
    EXPECT_TRUE(is_open(number));
    second = {};
    EXPECT_FALSE(is_open(replaced));
}

TEST(Descriptor, ThatIsReleasedStaysOpen) {
    int number = -1;
    {
        Descriptor file(open_null());
        number = file.release();
        EXPECT_FALSE(file);
    }
    EXPECT_TRUE(is_open(number));
    close(number);
}

TEST(Descriptor, KeepsErrnoWhenItIsClosed) {
    const int number = open_null();
    close(number);
    errno = ENOSPC;
    {
        const Descriptor closed_twice(number); // close fails with EBADF
    }
    EXPECT_EQ(errno, ENOSPC);
}

TEST(Uninterrupted, RepeatsACallAsLongAsASignalInterruptsIt) {
    EXPECT_EQ(calls({}, 5), std::pair(5, std::size_t{1}));
    EXPECT_EQ(calls({EINTR, EINTR}, 5), std::pair(5, std::size_t{3}));
    EXPECT_EQ(calls({EINTR, EBADF, EINTR}, 5), std::pair(-1, std::size_t{2}));
}

TEST(Uninterrupted, DoesNotRepeatACallThatSucceededWhateverErrnoWas) {
    for (const int result : {0, 5}) {
        errno = EINTR;
        EXPECT_EQ(calls({}, result), std::pair(result, std::size_t{1}));
    }
}

} // namespace
} // namespace lumo
