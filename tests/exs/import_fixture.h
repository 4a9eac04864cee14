// Imports into a show in a temporary folder, with a sampler and a copyfile controlled by the test.
#pragma once

#include "fake_audio_toolbox.h"
#include "fake_copyfile.h"
#include "support/preset_text.h"
#include "support/temp_folder.h"
#include <lumo/exs.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace lumo::test {

/// A test that imports into its own show and checks at the end that every sampler was disposed of.
class ImportTest : public testing::Test {
protected:
    void SetUp() override {
        audio_toolbox() = FakeAudioToolbox();
        copier() = FakeCopyfile();
        options.package = (folder / "Show.lumo").string();
        options.states = (folder / "states").string();
    }

    void TearDown() override { EXPECT_EQ(audio_toolbox().units_alive, 0); }

    /// Writes a valid preset with this name and imports it.
    exs::Report import_preset(const std::string& name = "Kit.aupreset") {
        write_file(folder / name, preset_text({}));
        return exs::import_instrument((folder / name).string(), options);
    }

    /// Makes the sampler's state refer to these files, the first as "Sample:1" and so on.
    static void set_samples(const std::vector<std::filesystem::path>& paths) {
        std::vector<std::pair<std::string, Value>> references;
        references.reserve(paths.size());
        for (const std::filesystem::path& path : paths) {
            references.emplace_back("Sample:" + std::to_string(references.size() + 1),
                                    text(path.string()));
        }
        audio_toolbox().state =
            dictionary({{"file-references", dictionary(references)}, {"name", text("Test")}});
    }

    std::filesystem::path in_show(const std::string& path) const {
        return std::filesystem::path(options.package) / path;
    }

    TempFolder folder;
    exs::Options options;
};

} // namespace lumo::test
