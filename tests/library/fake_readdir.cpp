// Unless a test has set up a fake, the entries are those of the real readdir.
#include "fake_readdir.h"

#include <dirent.h>
#include <dlfcn.h>

#include <cerrno>

namespace lumo::test {
namespace {

bool is_fake = false;
bool fails = false;

} // namespace

FakeReaddir::FakeReaddir(bool fails_at_end) {
    is_fake = true;
    fails = fails_at_end;
}

FakeReaddir::~FakeReaddir() {
    is_fake = false;
}

} // namespace lumo::test

dirent* readdir(DIR* folder) {
    static const auto real_readdir =
        reinterpret_cast<decltype(&readdir)>(dlsym(RTLD_NEXT, "readdir"));
    dirent* entry = real_readdir(folder);
    if (lumo::test::is_fake && entry != nullptr) {
        entry->d_type = DT_UNKNOWN;
    } else if (lumo::test::is_fake && lumo::test::fails) {
        errno = EIO;
    }
    return entry;
}
