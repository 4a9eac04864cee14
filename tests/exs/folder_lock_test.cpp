// The lock that serialises imports into one folder.
#include "folder_lock.h"
#include "support/descriptors.h"
#include "support/temp_folder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

namespace {

using lumo::exs::FolderLock;
using lumo::exs::open_folder;
using namespace lumo::test;

/// Whether the folder is not locked.
bool is_free(const std::filesystem::path& folder) {
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY);
    const bool could = flock(descriptor, LOCK_EX | LOCK_NB) == 0;
    close(descriptor);
    return could;
}

TEST(FolderLock, KeepsOthersOutAsLongAsItLives) {
    const TempFolder folder;
    {
        const FolderLock lock(open_folder(folder.path().string()));
        EXPECT_FALSE(is_free(folder.path()));
    }
    EXPECT_TRUE(is_free(folder.path()));
}

TEST(FolderLock, LeavesNothingOpen) {
    const TempFolder folder;
    const int before = next_descriptor();
    { const FolderLock lock(open_folder(folder.path().string())); }
    EXPECT_EQ(next_descriptor(), before);
}

TEST(FolderLock, WorksWhereStandardInputIsClosed) {
    const TempFolder folder;
    const auto locks_there = [&] {
        close(0); // the folder is opened as descriptor 0
        {
            const FolderLock lock(open_folder(folder.path().string()));
            if (is_free(folder.path())) {
                return false;
            }
        }
        return is_free(folder.path()) && next_descriptor() == 0;
    };
    EXPECT_EXIT(_exit(locks_there() ? 0 : 1), testing::ExitedWithCode(0), "");
}

TEST(FolderLock, OfWhatIsNoFolderIsNone) {
    const TempFolder folder;
    write_file(folder / "file", "");
    const int before = next_descriptor();
    const FolderLock absent(open_folder((folder / "absent").string()));
    const FolderLock file(open_folder((folder / "file").string()));
    EXPECT_EQ(next_descriptor(), before);
}

} // namespace
