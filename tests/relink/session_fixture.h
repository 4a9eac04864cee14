// The fixture of all tests of sessions, and the types of the records.
#pragma once

#include "support/temp_folder.h"
#include <lumo/relink.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lumo::exs {

using Pairs = std::vector<std::pair<std::string, std::string>>;
using Paths = std::vector<std::string>;

/// A sample library with an index of it, and paths that do not exist.
class Session : public testing::Test {
protected:
    void SetUp() override {
        test::write_file(folder / "library/kick.wav", "the kick");
        test::write_file(folder / "library/snare.wav", "the snare");
        index.add_root((folder / "library").string());
    }

    std::string path(std::string_view name) const { return (folder / name).string(); }

    test::TempFolder folder;
    SampleIndex index;
};

} // namespace lumo::exs
