// The order of calls in a look-up and what it leaves in errno, with functions made for the test.
#include "look_up.h"
#include <lumo/relink.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace lumo::exs::relink {

/// The files that these tests pretend to have.
static std::vector<std::string> readable;

bool is_readable(const char* path) {
    return std::find(readable.begin(), readable.end(), path) != readable.end();
}

namespace {

class LookUp : public testing::Test {
protected:
    void SetUp() override {
        index.files["kick.wav"] = {{"/new/kick.wav", "/new"}};
        readable = {"/new/kick.wav"};
        begin(index);
    }
    void TearDown() override { end(); }

    /// Fails with `error` but for the paths that are readable; notes its calls.
    int call(const char* path, int error) {
        calls.emplace_back(path);
        if (is_readable(path)) {
            return 7;
        }
        errno = error;
        return -1;
    }

    SampleIndex index;
    std::vector<std::string> calls;
};

TEST_F(LookUp, calls_with_the_callers_path_first) {
    const int result = look_up("/old/kick.wav", [&](const char* p) { return call(p, ENOENT); });
    EXPECT_EQ(result, 7);
    EXPECT_EQ(calls, (std::vector<std::string>{"/old/kick.wav", "/new/kick.wav"}));
}

TEST_F(LookUp, calls_once_when_that_succeeds) {
    readable = {"/old/kick.wav"};
    EXPECT_EQ(look_up("/old/kick.wav", [&](const char* p) { return call(p, ENOENT); }), 7);
    EXPECT_EQ(calls.size(), 1u);
}

TEST_F(LookUp, calls_once_when_it_fails_otherwise_than_by_absence) {
    for (const int error : {EACCES, EMFILE, ELOOP, ENAMETOOLONG, EINTR, EIO}) {
        calls.clear();
        EXPECT_EQ(look_up("/old/kick.wav", [&](const char* p) { return call(p, error); }), -1);
        EXPECT_EQ(errno, error);
        EXPECT_EQ(calls.size(), 1u);
    }
    EXPECT_TRUE(end().relinked.empty());
}

TEST_F(LookUp, leaves_errno_as_it_was_when_it_succeeds) {
    errno = EDOM;
    look_up("/old/kick.wav", [&](const char* p) { return call(p, ENOTDIR); });
    EXPECT_EQ(errno, EDOM);
}

TEST_F(LookUp, leaves_the_first_error_when_the_second_call_fails) {
    const int result = look_up("/old/kick.wav", [&](const char* p) {
        calls.emplace_back(p);
        errno = calls.size() == 1 ? ENOTDIR : EINVAL;
        return -1;
    });
    EXPECT_EQ(result, -1);
    EXPECT_EQ(errno, ENOTDIR);
    EXPECT_EQ(calls.size(), 2u);
}

TEST_F(LookUp, counts_a_sample_as_unresolved_when_the_indexed_file_may_not_be_read) {
    readable.clear();
    EXPECT_EQ(look_up("/old/kick.wav", [&](const char* p) { return call(p, ENOENT); }), -1);
    EXPECT_EQ(calls, (std::vector<std::string>{"/old/kick.wav"}));
    const Result result = end();
    EXPECT_TRUE(result.relinked.empty());
    EXPECT_EQ(result.unresolved, (std::vector<std::string>{"/old/kick.wav"}));
}

TEST_F(LookUp, gives_one_answer_to_one_path_whatever_happens_meanwhile) {
    look_up("/old/kick.wav", [&](const char* p) { return call(p, ENOENT); });
    readable.clear();
    look_up("/old/kick.wav", [&](const char* p) { return call(p, ENOENT); });
    const Result result = end();
    EXPECT_EQ(result.relinked.size(), 1u);
    EXPECT_TRUE(result.unresolved.empty());
}

TEST_F(LookUp, made_from_within_another_goes_to_the_real_function) {
    look_up("/old/kick.wav", [&](const char* p) {
        look_up("/old/tom.wav", [&](const char* inner) { return call(inner, ENOENT); });
        return call(p, ENOENT);
    });
    const Result result = end();
    EXPECT_EQ(result.relinked.size(), 1u);
    EXPECT_TRUE(result.unresolved.empty());
}

TEST_F(LookUp, takes_null_for_the_failure_of_a_function_that_gives_a_pointer) {
    static char found = 0;
    char* const result = look_up("/old/kick.wav", [&](const char* p) -> char* {
        return call(p, ENOENT) < 0 ? nullptr : &found;
    });
    EXPECT_EQ(result, &found);
}

TEST_F(LookUp, without_a_session_is_one_call) {
    end();
    EXPECT_EQ(look_up("/old/kick.wav", [&](const char* p) { return call(p, ENOENT); }), -1);
    EXPECT_EQ(calls.size(), 1u);
}

} // namespace
} // namespace lumo::exs::relink
