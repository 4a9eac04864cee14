// How many folders SampleIndex::add_root opens. The library calls the openat of this program.
#include "support/temp_folder.h"
#include <lumo/relink.h>

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <string>

static int opens = 0;

extern "C" __attribute__((visibility("default"))) int openat(int folder, const char* path,
                                                             int flags, ...) {
    ++opens;
    return static_cast<int>(syscall(SYS_openat, folder, path, flags, 0));
}

namespace lumo::exs {
namespace {

int opens_of(SampleIndex& index, const std::string& root) {
    opens = 0;
    index.add_root(root);
    return opens;
}

TEST(AddRoot, OpensEachFolderOnce) {
    const test::TempFolder folder;
    test::write_file(folder / "a.wav", "");
    test::write_file(folder / "Kits/808/b.wav", "");
    SampleIndex index;
    EXPECT_EQ(opens_of(index, folder.path().string()), 3);
}

TEST(AddRoot, LeavesARootThatIsIndexedAtItsFirstSample) {
    const test::TempFolder folder;
    for (const char* path : {"a.wav", "0/b.wav", "1/c.wav", "2/d.wav"}) {
        test::write_file(folder / path, "");
    }
    SampleIndex index;
    index.add_root(folder.path().string());
    EXPECT_EQ(opens_of(index, folder.path().string()), 1);
    EXPECT_EQ(index.entries, 4u);
}

} // namespace
} // namespace lumo::exs
