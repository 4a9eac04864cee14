// The C library's functions behind the shims, and the result where the system lacks a function.
#include "real_function.h"

#include <gtest/gtest.h>
#include <string.h>

namespace lumo::exs::relink {
namespace {

TEST(RealFunction, CallsTheFunctionOfThatNameAndLeavesErrnoAlone) {
    RealFunction<size_t(const char*)> length("strlen");
    errno = EDOM;
    EXPECT_EQ(length("kick"), 4u);
    EXPECT_EQ(length("snare"), 5u);
    EXPECT_EQ(errno, EDOM);
}

TEST(RealFunction, ThatTheSystemDoesNotHaveFailsWithENOSYS) {
    RealFunction<int(const char*, int)> number("lumo_no_such_function");
    RealFunction<char*(const char*)> pointer("lumo_no_such_function");
    for (int call = 0; call < 2; ++call) {
        errno = 0;
        EXPECT_EQ(number("kick.wav", 1), -1);
        EXPECT_EQ(errno, ENOSYS);
        errno = 0;
        EXPECT_EQ(pointer("kick.wav"), nullptr);
        EXPECT_EQ(errno, ENOSYS);
    }
}

} // namespace
} // namespace lumo::exs::relink
