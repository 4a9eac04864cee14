// Reading the entries of one folder, with every implementation that a system may need.
#include "folder_entries.h"
#include "support/temp_folder.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

namespace lumo::exs::relink {
namespace {

using Names = std::set<std::string>;

/// The names that read_entries reports for `path`, and "(left open)" when the descriptor is still
/// open afterwards.
Names names_in(const std::filesystem::path& path) {
    Names names;
    Descriptor opened(open(path.c_str(), O_RDONLY));
    const int descriptor = opened.get();
    EXPECT_GE(descriptor, 0);
    read_entries(std::move(opened), [&](const char* name, unsigned char) { names.insert(name); });
    if (fcntl(descriptor, F_GETFD) >= 0) {
        names.insert("(left open)");
    }
    return names;
}

TEST(FolderEntries, AreAllNamesAndThoseOfItselfAndItsParent) {
    const test::TempFolder folder;
    test::write_file(folder / "kick.wav", "");
    test::write_file(folder / "Kit/snare.wav", "");
    EXPECT_EQ(names_in(folder.path()), (Names{".", "..", "Kit", "kick.wav"}));
}

TEST(FolderEntries, OfWhatIsNoFolderAreNone) {
    const test::TempFolder folder;
    test::write_file(folder / "kick.wav", "");
    EXPECT_EQ(names_in(folder / "kick.wav"), Names{});
}

} // namespace
} // namespace lumo::exs::relink
