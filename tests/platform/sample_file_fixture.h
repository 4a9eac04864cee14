// The fixture of the tests of sample files.
#pragma once

#include "audio_bytes.h"
#include "sampler/sample_file.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace lumo::platform {

class SampleFile : public testing::Test {
protected:
    test::TempFolder folder;
    const std::filesystem::path path = folder / "kick.wav";

    OSStatus open_bytes(const std::string& bytes) const {
        test::write_file(path, bytes);
        return open_sample(path);
    }
    OSStatus open_format(int format) const {
        test::write_audio(path, format);
        return open_sample(path);
    }
};

} // namespace lumo::platform
