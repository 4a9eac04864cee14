// A show, a states folder and instruments in a temporary folder, and the built tool.
#pragma once

#include "support/import_run.h"
#include "support/preset_text.h"
#include "support/sound_file.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace lumo::test {

/// A test that runs the tool in a temporary folder.
class ToolTest : public testing::Test {
protected:
    using Path = std::filesystem::path;

    /// The command line with these instruments and options.
    std::vector<std::string> command(const std::vector<std::string>& arguments) const {
        std::vector<std::string> words = {LUMO_TOOL, "--package", package.string(), "--states",
                                          states.string()};
        words.insert(words.end(), arguments.begin(), arguments.end());
        return words;
    }

    /// Runs that command line.
    ImportRun import_all(const std::vector<std::string>& arguments) const {
        const std::vector<std::string> words = command(arguments);
        return run_import({words.begin() + 1, words.end()});
    }

    /// Runs the tool for one instrument and returns its report.
    nlohmann::json import(const Path& instrument,
                          const std::vector<std::string>& options = {}) const {
        return import_one(package, states, instrument, options);
    }

    /// Writes a sound of `frames` frames; returns its path.
    std::string make_sound(const std::string& name, int frames = 100) const {
        write_file(folder / name, wav_bytes(frames));
        return (folder / name).string();
    }

    /// Writes a preset that plays these samples; returns its path.
    std::string make_preset(const std::string& name,
                            const std::vector<std::string>& samples = {}) const {
        write_file(folder / name, preset_text(samples));
        return (folder / name).string();
    }

    TempFolder folder;
    Path package = folder / "Show.lumo";
    Path states = folder / "states";
};

/// The size in bytes of a sound of `frames` frames.
inline std::uint64_t sound_size(int frames) {
    return wav_bytes(frames).size();
}

} // namespace lumo::test
