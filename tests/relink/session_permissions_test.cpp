// Sessions of a user who may not read or search everything.
#include "session_fixture.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <string>

namespace lumo::exs {
namespace {

using test::read_file;
using test::write_file;

/// Sessions of a user to whom permissions apply: user 65534 when the tests run as root.
class SessionOfAUser : public Session {
protected:
    void SetUp() override {
        Session::SetUp();
        namespace fs = std::filesystem;
        fs::permissions(folder.path(), fs::perms(0755));
        for (const char* name : {"closed/kick.wav", "closed/tom.wav"}) {
            write_file(folder / name, "behind a closed folder");
        }
        fs::permissions(path("closed"), fs::perms::none);
    }
    void TearDown() override {
        std::filesystem::permissions(path("closed"), std::filesystem::perms(0700));
    }

    /// Expects `holds` to return true in a process of that user. Skips the test when the process
    /// cannot become that user or the user cannot read the test's folder.
    void expect_of_user(const std::function<bool()>& holds) const {
        const auto run = [&] {
            const bool is_bound = geteuid() != 0 || (setgid(65534) == 0 && setuid(65534) == 0);
            if (!is_bound || access(folder.path().c_str(), R_OK | X_OK) != 0) {
                return 2;
            }
            return holds() ? 0 : 1;
        };
        int code = -1;
        const auto take_code = [&code](int status) {
            code = WEXITSTATUS(status);
            return WIFEXITED(status);
        };
        EXPECT_EXIT(_exit(run()), take_code, "");
        if (code == 2) {
            GTEST_SKIP() << "no other user can be taken who sees " << folder.path();
        }
        EXPECT_EQ(code, 0);
    }
};

TEST_F(SessionOfAUser, LooksForASampleBehindAClosedFolder) {
    expect_of_user([&] {
        relink::begin(index);
        const std::string kick = read_file(path("closed/kick.wav"));
        const bool has_kick = std::filesystem::exists(path("closed/kick.wav"));
        errno = 0;
        const int tom = open(path("closed/tom.wav").c_str(), O_RDONLY);
        const int error = errno;
        const relink::Result result = relink::end();
        return kick == "the kick" && has_kick && tom == -1 && error == EACCES &&
               result.relinked == Pairs{{path("closed/kick.wav"), path("library/kick.wav")}} &&
               result.unresolved == Paths{path("closed/tom.wav")};
    });
}

TEST_F(SessionOfAUser, GivesTheErrorOfAnIndexedFileThatMayNotBeWritten) {
    std::filesystem::permissions(path("library/kick.wav"), std::filesystem::perms(0444));
    expect_of_user([&] {
        relink::begin(index);
        errno = 0;
        const int result = access(path("gone/kick.wav").c_str(), W_OK);
        const int error = errno;
        return relink::end().relinked.size() == 1 && result == -1 && error == EACCES;
    });
}

TEST_F(SessionOfAUser, LooksForNoOtherFileWhenTheSampleIsThereAndMayNotBeRead) {
    write_file(folder / "here/kick.wav", "a secret");
    std::filesystem::permissions(path("here/kick.wav"), std::filesystem::perms::none);
    expect_of_user([&] {
        relink::begin(index);
        errno = 0;
        const int file = open(path("here/kick.wav").c_str(), O_RDONLY);
        const int error = errno;
        const relink::Result result = relink::end();
        return file == -1 && error == EACCES && result.relinked.empty() &&
               result.unresolved.empty();
    });
}

} // namespace
} // namespace lumo::exs
