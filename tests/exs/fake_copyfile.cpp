// Like the real one, it does not replace an existing file.
#include "fake_copyfile.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace lumo::test {

FakeCopyfile& copier() {
    static FakeCopyfile instance;
    return instance;
}

} // namespace lumo::test

int copyfile(const char* from, const char* to, copyfile_state_t, copyfile_flags_t flags) {
    lumo::test::FakeCopyfile& copier = lumo::test::copier();
    copier.copies.emplace_back(from, to);
    copier.flags = flags;
    int fault = copier.before(static_cast<int>(copier.copies.size()), to);
    if (std::error_code ignored;
        fault == 0 && std::filesystem::exists(std::filesystem::symlink_status(to, ignored))) {
        fault = EEXIST;
    }
    if (fault == 0) {
        std::filesystem::copy_file(from, to);
        copier.after(to);
        return 0;
    }
    errno = fault;
    return -1;
}
