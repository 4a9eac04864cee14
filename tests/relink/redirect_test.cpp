// The order of calls in a look-up, and errno after it, with functions replaced by the test.
#include "redirect.h"
#include <lumo/relink.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace lumo::exs::relink {

/// The files that these tests pretend to have.
static std::vector<std::string> readable;

/// A path that exists but may not be read.
static std::string closed;

/// The prefix of every real path, and the paths for which real_path was called.
static std::string real_folder;
static std::vector<std::string> asked_for_real_path;

static bool is_readable(const char* path) {
    return std::find(readable.begin(), readable.end(), path) != readable.end();
}

bool can_access(const char* path, int mode) {
    errno = EXDEV; // a file function may change errno
    return is_readable(path) || (mode == F_OK && path == closed);
}

bool is_link(const char* path) {
    errno = EXDEV;
    return std::string(path).find("link") != std::string::npos;
}

std::string real_path(const char* path) {
    errno = EXDEV;
    asked_for_real_path.emplace_back(path);
    return real_folder + path;
}

namespace {

class Redirect : public testing::Test {
protected:
    void SetUp() override {
        index.files["kick.wav"] = {{"/new/kick.wav", "/new"}};
        readable = {"/new/kick.wav"};
        closed.clear();
        real_folder.clear();
        asked_for_real_path.clear();
        begin(index);
    }
    void TearDown() override { end(); }

    /// Fails with `error` except for readable paths; records its calls.
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

TEST_F(Redirect, CallsWithTheCallersPathFirst) {
    const int result = redirect("/old/kick.wav", [&](const char* p) { return call(p, ENOENT); });
    EXPECT_EQ(result, 7);
    EXPECT_EQ(calls, (std::vector<std::string>{"/old/kick.wav", "/new/kick.wav"}));
}

TEST_F(Redirect, CallsOnceWhenThatSucceeds) {
    readable = {"/old/kick.wav"};
    EXPECT_EQ(redirect("/old/kick.wav", [&](const char* p) { return call(p, ENOENT); }), 7);
    EXPECT_EQ(calls.size(), 1u);
}

TEST_F(Redirect, CallsOnceWhenItFailsOtherwiseThanByAbsence) {
    closed = "/old/kick.wav";
    for (const int error :
         {EACCES, EPERM, ENOTDIR, EMFILE, ELOOP, ENAMETOOLONG, EINTR, EIO, ENXIO}) {
        calls.clear();
        EXPECT_EQ(redirect("/old/kick.wav", [&](const char* p) { return call(p, error); }), -1);
        EXPECT_EQ(errno, error);
        EXPECT_EQ(calls.size(), 1u);
    }
    EXPECT_TRUE(end().relinked.empty());
}

TEST_F(Redirect, LeavesErrnoAsItWasWhenItSucceeds) {
    errno = EDOM;
    redirect("/old/kick.wav", [&](const char* p) { return call(p, ENOTDIR); });
    EXPECT_EQ(errno, EDOM);
}

TEST_F(Redirect, OfAnOpenTakesItsSuccessForTheRightToRead) {
    readable.clear(); // can_access would return false
    const auto open = [&](const char* p) {
        calls.emplace_back(p);
        errno = ENOENT;
        return std::string(p) == "/new/kick.wav" ? 7 : -1;
    };
    errno = EDOM;
    EXPECT_EQ(redirect_open(O_RDONLY, "/old/kick.wav", open), 7);
    EXPECT_EQ(errno, EDOM);
    EXPECT_EQ(redirect_open("rb", "/old/kick.wav", open), 7);
    EXPECT_EQ(calls, (std::vector<std::string>{"/old/kick.wav", "/new/kick.wav", "/old/kick.wav",
                                               "/new/kick.wav"}));
    EXPECT_EQ(end().relinked.size(), 1u);
}

TEST_F(Redirect, OfAnOpenThatFailsAsksWhetherTheFileMayBeRead) {
    readable.clear();
    EXPECT_EQ(
        redirect_open(O_RDONLY, "/old/kick.wav", [&](const char* p) { return call(p, ENOENT); }),
        -1);
    EXPECT_EQ(end().unresolved, std::vector<std::string>{"/old/kick.wav"});
    begin(index);
    readable = {"/new/kick.wav"};
    const int result = redirect_open(O_RDONLY, "/old/kick.wav", [&](const char* p) {
        errno = p == std::string("/new/kick.wav") ? EMFILE : ENOENT;
        return -1;
    });
    EXPECT_EQ(result, -1);
    EXPECT_EQ(errno, EMFILE);
    EXPECT_EQ(end().relinked.size(), 1u);
}

#ifdef O_PATH
TEST_F(Redirect, OfAnOpenWithoutRightsAsksWhetherTheFileMayBeRead) {
    readable.clear();
    const int result = redirect_open(O_RDONLY | O_PATH, "/old/kick.wav", [&](const char* p) {
        errno = ENOENT;
        return p == std::string("/new/kick.wav") ? 7 : -1;
    });
    EXPECT_EQ(result, -1);
    EXPECT_EQ(end().unresolved, std::vector<std::string>{"/old/kick.wav"});
}
#endif

TEST_F(Redirect, LeavesTheSecondErrorWhenTheSessionsFileIsThere) {
    for (const int error : {EINVAL, EACCES, EPERM, ENOTDIR, ENODATA, EMFILE}) {
        calls.clear();
        const int result = redirect("/old/kick.wav", [&](const char* p) {
            calls.emplace_back(p);
            errno = calls.size() == 1 ? ENOENT : error;
            return -1;
        });
        EXPECT_EQ(result, -1);
        EXPECT_EQ(errno, error);
        EXPECT_EQ(calls.size(), 2u);
    }
}

TEST_F(Redirect, LeavesTheFirstErrorWhenTheSessionsFileIsAbsentByThen) {
    for (const int error : {ENOENT, ENOTDIR, EACCES, EPERM}) {
        readable = {"/new/kick.wav"};
        calls.clear();
        const int result = redirect("/old/kick.wav", [&](const char* p) {
            calls.emplace_back(p);
            if (calls.size() == 2) {
                readable.clear();
            }
            errno = calls.size() == 1 ? ENOTDIR : error;
            return -1;
        });
        EXPECT_EQ(result, -1);
        EXPECT_EQ(errno, ENOTDIR);
        EXPECT_EQ(calls.size(), 2u);
    }
}

TEST_F(Redirect, GivesAFailureOfTheSecondCallThatLeavesErrnoAlone) {
    errno = 0; // as pathconf without a limit
    const int result = redirect("/old/kick.wav", [&](const char* p) {
        if (!can_access(p, F_OK)) {
            errno = ENOENT;
        } else {
            errno = 0;
        }
        return -1;
    });
    EXPECT_EQ(result, -1);
    EXPECT_EQ(errno, 0);
}

TEST_F(Redirect, TakesWhatCannotBeSeenForAbsent) {
    for (const int error : {EACCES, EPERM}) {
        const std::string path = "/closed/" + std::to_string(error) + "/kick.wav";
        errno = EDOM;
        EXPECT_EQ(redirect(path.c_str(), [&](const char* p) { return call(p, error); }), 7);
        EXPECT_EQ(errno, EDOM);
    }
    EXPECT_EQ(end().relinked.size(), 2u);
}

TEST_F(Redirect, RecordsWhatCannotBeSeenAndIsNotIndexedAsUnresolvedWithItsError) {
    const int result = redirect("/closed/tom.wav", [&](const char* p) { return call(p, EACCES); });
    EXPECT_EQ(result, -1);
    EXPECT_EQ(errno, EACCES);
    EXPECT_EQ(end().unresolved, (std::vector<std::string>{"/closed/tom.wav"}));
}

TEST_F(Redirect, AsksForTheRealPathOfAnExistingLinkAndOfAFolderOnce) {
    readable = {"/old/kick.wav",   "/old/tom.wav", "/old/link.wav", "/old/notes.txt",
                "/other/kick.wav", "kick.wav",     "/kick.wav"};
    for (const char* path :
         {"/old/kick.wav", "/old/tom.wav", "/old/kick.wav", "/old/link.wav", "/old/link.wav",
          "/old/notes.txt", "/old/gone.wav", "/other/kick.wav", "kick.wav", "/kick.wav"}) {
        errno = EDOM;
        redirect(path, [&](const char* p) { return call(p, ENOENT); });
    }
    EXPECT_EQ(asked_for_real_path,
              (std::vector<std::string>{"/old/", "/old/link.wav", "/other/", ".", "/"}));
    EXPECT_TRUE(end().apple_library.empty());
}

TEST_F(Redirect, RecordsAnExistingSampleWhoseRealPathIsApplesAndGivesIt) {
    readable = {"/old/kick.wav"};
    real_folder = "/Library/Application Support/Logic";
    errno = EDOM;
    EXPECT_EQ(redirect("/old/kick.wav", [&](const char* p) { return call(p, ENOENT); }), 7);
    EXPECT_EQ(errno, EDOM);
    redirect("/old/kick.wav", [&](const char* p) { return call(p, ENOENT); });
    const Result result = end();
    EXPECT_EQ(result.apple_library, (std::vector<std::string>{"/old/kick.wav"}));
    EXPECT_TRUE(result.relinked.empty());
    EXPECT_TRUE(result.unresolved.empty());
}

TEST_F(Redirect, RecordsASampleThatComesOrGoesMeanwhileInOneList) {
    real_folder = "/Library/Application Support/Logic";
    redirect("/old/tom.wav", [&](const char* p) { return call(p, ENOENT); });
    readable = {"/old/tom.wav", "/old/kick.wav"};
    redirect("/old/tom.wav", [&](const char* p) { return call(p, ENOENT); });
    redirect("/old/kick.wav", [&](const char* p) { return call(p, ENOENT); });
    readable = {"/new/kick.wav"};
    redirect("/old/kick.wav", [&](const char* p) { return call(p, ENOENT); });
    const Result result = end();
    EXPECT_EQ(result.unresolved, (std::vector<std::string>{"/old/tom.wav"}));
    EXPECT_EQ(result.apple_library, (std::vector<std::string>{"/old/kick.wav"}));
    EXPECT_TRUE(result.relinked.empty());
}

TEST_F(Redirect, CountsASampleAsUnresolvedWhenTheIndexedFileMayNotBeRead) {
    readable.clear();
    EXPECT_EQ(redirect("/old/kick.wav", [&](const char* p) { return call(p, ENOENT); }), -1);
    EXPECT_EQ(calls, (std::vector<std::string>{"/old/kick.wav"}));
    const Result result = end();
    EXPECT_TRUE(result.relinked.empty());
    EXPECT_EQ(result.unresolved, (std::vector<std::string>{"/old/kick.wav"}));
}

TEST_F(Redirect, GivesOneAnswerToOnePathWhateverHappensMeanwhile) {
    redirect("/old/kick.wav", [&](const char* p) { return call(p, ENOENT); });
    readable.clear();
    redirect("/old/kick.wav", [&](const char* p) { return call(p, ENOENT); });
    const Result result = end();
    EXPECT_EQ(result.relinked.size(), 1u);
    EXPECT_TRUE(result.unresolved.empty());
}

TEST_F(Redirect, MadeFromWithinAnotherGoesToTheRealFunction) {
    redirect("/old/kick.wav", [&](const char* p) {
        redirect("/old/tom.wav", [&](const char* inner) { return call(inner, ENOENT); });
        return call(p, ENOENT);
    });
    const Result result = end();
    EXPECT_EQ(result.relinked.size(), 1u);
    EXPECT_TRUE(result.unresolved.empty());
}

TEST_F(Redirect, TakesNullForTheFailureOfAFunctionThatGivesAPointer) {
    static char found = 0;
    char* const result = redirect("/old/kick.wav", [&](const char* p) -> char* {
        return call(p, ENOENT) < 0 ? nullptr : &found;
    });
    EXPECT_EQ(result, &found);
}

TEST_F(Redirect, WhoseSessionEndsMeanwhileGivesTheFirstResult) {
    const auto call_and_end = [&](const char* path) {
        end();
        return call(path, ENOENT);
    };
    EXPECT_EQ(redirect("/old/kick.wav", call_and_end), -1);
    EXPECT_EQ(errno, ENOENT);
    begin(index);
    readable = {"/old/kick.wav"};
    EXPECT_EQ(redirect("/old/kick.wav", call_and_end), 7);
    EXPECT_EQ(calls.size(), 2u);
    EXPECT_TRUE(asked_for_real_path.empty());
}

TEST_F(Redirect, WithoutASessionIsOneCall) {
    end();
    EXPECT_EQ(redirect("/old/kick.wav", [&](const char* p) { return call(p, ENOENT); }), -1);
    EXPECT_EQ(calls.size(), 1u);
}

} // namespace
} // namespace lumo::exs::relink
