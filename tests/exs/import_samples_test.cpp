// How the samples of an instrument come into the show.
#include "base/cf_values.h"
#include "import_fixture.h"

#include <cerrno>
#include <system_error>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace lumo::test;
using lumo::exs::Report;
using lumo::exs::SampleIndex;
using Texts = std::vector<std::string>;

class ImportSamples : public ImportTest {
protected:
    /// The references of the state that was checked, relative to the package.
    Texts placed() const {
        const Value references = entry(audio_toolbox().loaded_state, "file-references");
        Texts paths;
        for (int i = 1;; ++i) {
            const Value path = entry(references, ("Sample:" + std::to_string(i)).c_str());
            if (!path) {
                return paths;
            }
            const std::string text = lumo::to_string(static_cast<CFStringRef>(path.get()));
            paths.push_back(fs::path(text).lexically_relative(options.package).string());
        }
    }

    fs::path sample(const std::string& name, const std::string& bytes) {
        write_file(folder / name, bytes);
        return folder / name;
    }
};

TEST_F(ImportSamples, KeepTheirNameAndThatOfTheirFolder) {
    set_samples({sample("a/b/Kit/kick.wav", "kick"), sample("a/Loops/beat.aif", "beats")});
    const Report report = import_preset();
    EXPECT_TRUE(report.ok) << report.error;
    EXPECT_EQ(placed(), (Texts{"samples/Kit/kick.wav", "samples/Loops/beat.aif"}));
    EXPECT_EQ(read_file(in_show("samples/Kit/kick.wav")), "kick");
    EXPECT_EQ(read_file(in_show("samples/Loops/beat.aif")), "beats");
    EXPECT_EQ(report.samples, 2U);
    EXPECT_EQ(report.sample_bytes, 9U);
    EXPECT_EQ(report.copied_bytes, 9U);
}

TEST_F(ImportSamples, AreCopiedWithAllTheirMetadataAsClonesWherePossible) {
    set_samples({sample("Kit/kick.wav", "kick")});
    import_preset();
    EXPECT_EQ(copier().flags, 0x100000fU);
}

TEST_F(ImportSamples, ThatSeveralReferencesNameCountAndAreCopiedOnce) {
    const fs::path kick = sample("Kit/kick.wav", "kick");
    set_samples({kick, kick});
    const Report report = import_preset();
    EXPECT_EQ(report.samples, 1U);
    EXPECT_EQ(report.sample_bytes, 4U);
    EXPECT_EQ(report.copied_bytes, 4U);
    EXPECT_EQ(placed(), (Texts{"samples/Kit/kick.wav", "samples/Kit/kick.wav"}));
    EXPECT_EQ(copier().copies.size(), 1U);
}

TEST_F(ImportSamples, AreNotCopiedAgainByASecondImport) {
    set_samples({sample("Kit/kick.wav", "kick"), sample("Kit/snare.wav", "snare")});
    import_preset();
    const Report report = import_preset();
    EXPECT_TRUE(report.ok) << report.error;
    EXPECT_EQ(report.samples, 2U);
    EXPECT_EQ(report.sample_bytes, 9U);
    EXPECT_EQ(report.copied_bytes, 0U);
    EXPECT_EQ(copier().copies.size(), 2U);
}

TEST_F(ImportSamples, OfTheSameNameAndAnotherSizeAreNumberedInTheOrderOfTheirKeys) {
    set_samples({sample("a/Kit/kick.wav", "1"), sample("b/Kit/kick.wav", "22"),
                 sample("c/Kit/kick.wav", "333")});
    const Report report = import_preset();
    EXPECT_EQ(placed(),
              (Texts{"samples/Kit/kick.wav", "samples/Kit/kick-2.wav", "samples/Kit/kick-3.wav"}));
    EXPECT_EQ(read_file(in_show("samples/Kit/kick.wav")), "1");
    EXPECT_EQ(read_file(in_show("samples/Kit/kick-2.wav")), "22");
    EXPECT_EQ(read_file(in_show("samples/Kit/kick-3.wav")), "333");
    EXPECT_EQ(report.copied_bytes, 6U);
}

TEST_F(ImportSamples, OfTheSameNameFolderAndSizeShareACopy) {
    set_samples({sample("a/Kit/kick.wav", "1111"), sample("b/Kit/kick.wav", "2222")});
    const Report report = import_preset();
    EXPECT_EQ(placed(), (Texts{"samples/Kit/kick.wav", "samples/Kit/kick.wav"}));
    EXPECT_EQ(read_file(in_show("samples/Kit/kick.wav")), "1111");
    EXPECT_EQ(report.samples, 2U);
    EXPECT_EQ(report.sample_bytes, 8U);
    EXPECT_EQ(report.copied_bytes, 4U);
}

TEST_F(ImportSamples, ShareTheCopyOfTheirSizeAmongNumberedOnes) {
    write_file(in_show("samples/Kit/kick.wav"), "as it was");
    set_samples({sample("a/Kit/kick.wav", "1"), sample("b/Kit/kick.wav", "22"),
                 sample("c/Kit/kick.wav", "3"), sample("d/Kit/kick.wav", "it is so."),
                 sample("e/Kit/kick.wav", "55")});
    const Report report = import_preset();
    EXPECT_EQ(placed(),
              (Texts{"samples/Kit/kick-2.wav", "samples/Kit/kick-3.wav", "samples/Kit/kick-2.wav",
                     "samples/Kit/kick.wav", "samples/Kit/kick-3.wav"}));
    EXPECT_EQ(report.copied_bytes, 3U);
}

TEST_F(ImportSamples, NeverReplaceWhatIsInTheShow) {
    write_file(in_show("samples/Kit/kick.wav"), "as it was");
    set_samples({sample("Kit/kick.wav", "kick")});
    import_preset();
    EXPECT_EQ(read_file(in_show("samples/Kit/kick.wav")), "as it was");
    EXPECT_EQ(placed(), Texts{"samples/Kit/kick-2.wav"});
}

TEST_F(ImportSamples, WithoutAnExtensionAreNumberedAtTheEnd) {
    write_file(in_show("samples/Kit/kick"), "as it was");
    set_samples({sample("Kit/kick", "kick")});
    import_preset();
    EXPECT_EQ(placed(), Texts{"samples/Kit/kick-2"});
}

TEST_F(ImportSamples, ThatMovedAreTakenFromTheIndex) {
    sample("new/Drums/kick.wav", "kick");
    SampleIndex index;
    index.add_root((folder / "new").string());
    options.index = &index;
    set_samples({"/no such folder/Kit/kick.wav"});
    const Report report = import_preset();
    EXPECT_TRUE(report.ok) << report.error;
    EXPECT_EQ(placed(), Texts{"samples/Drums/kick.wav"});
}

TEST_F(ImportSamples, WhosePlaceCannotBeSeenAreTakenFromTheIndex) {
    sample("new/Drums/kick.wav", "kick");
    fs::create_symlink("round", folder / "round"); // fails for every user
    SampleIndex index;
    index.add_root((folder / "new").string());
    options.index = &index;
    set_samples({folder / "round/kick.wav"});
    const Report report = import_preset();
    EXPECT_TRUE(report.ok) << report.error;
    EXPECT_EQ(placed(), Texts{"samples/Drums/kick.wav"});
}

TEST_F(ImportSamples, ThatAreMissingEndTheImport) {
    SampleIndex index;
    for (const SampleIndex* each :
         {static_cast<const SampleIndex*>(nullptr), static_cast<const SampleIndex*>(&index)}) {
        options.index = each;
        set_samples({sample("Kit/hat.wav", "hat"), "/no such folder/Kit/kick.wav"});
        const Report report = import_preset();
        EXPECT_EQ(report.error, "a sample wasn't found after loading: kick.wav");
        EXPECT_FALSE(report.ok);
        EXPECT_EQ(report.samples, 1U);
        EXPECT_EQ(report.copied_bytes, 0U);
    }
    EXPECT_FALSE(fs::exists(options.package));
    EXPECT_FALSE(fs::exists(options.states));
}

TEST_F(ImportSamples, BehindALinkAreCopiedUnderTheNameOfTheLink) {
    const fs::path file = sample("store/0001.bin", "kick");
    fs::create_directories(folder / "Kit");
    fs::create_symlink(file, folder / "Kit/link.wav");
    fs::create_symlink("link.wav", folder / "Kit/kick.wav");
    set_samples({folder / "Kit/kick.wav"});
    const Report report = import_preset();
    EXPECT_TRUE(report.ok) << report.error;
    EXPECT_EQ(copier().copies[0].first, file.string());
    EXPECT_EQ(placed(), Texts{"samples/Kit/kick.wav"});
    EXPECT_FALSE(fs::is_symlink(in_show("samples/Kit/kick.wav")));
    EXPECT_EQ(report.sample_bytes, 4U);
}

TEST_F(ImportSamples, InAFolderCalledDotDotTakeItsTrueName) {
    const fs::path kick = sample("Kit/kick.wav", "kick");
    fs::create_directories(folder / "Kit/deeper");
    set_samples({folder / "Kit/deeper/../kick.wav"});
    const Report report = import_preset();
    EXPECT_TRUE(report.ok) << report.error;
    EXPECT_EQ(placed(), Texts{"samples/Kit/kick.wav"});
}

TEST_F(ImportSamples, ThatCannotBeCopiedEndTheImport) {
    copier().before = [](int copy, const std::string&) { return copy == 2 ? ENOSPC : 0; };
    fs::create_directories(folder / "Kit");
    sample("Kit/b.bin", "bb");
    fs::create_symlink("b.bin", folder / "Kit/b.wav");
    set_samples({sample("Kit/a.wav", "a"), folder / "Kit/b.wav"});
    const Report report = import_preset();
    const fs::filesystem_error expected("copy failed", folder / "Kit/b.wav",
                                        in_show("samples/Kit/b.wav"),
                                        std::error_code(ENOSPC, std::generic_category()));
    EXPECT_EQ(report.error,
              std::string("the samples couldn't be copied into the show: ") + expected.what());
    EXPECT_FALSE(report.ok);
    EXPECT_EQ(report.samples, 2U);
    EXPECT_EQ(report.copied_bytes, 1U);
    EXPECT_EQ(read_file(in_show("samples/Kit/a.wav")), "a");
    EXPECT_FALSE(fs::exists(options.states));
}

TEST_F(ImportSamples, ThatAnotherProcessPlacesAtTheSameTimeAreTaken) {
    copier().before = [](int, const std::string& to) {
        write_file(to, "KICK");
        return EEXIST;
    };
    set_samples({sample("Kit/kick.wav", "kick")});
    const Report report = import_preset();
    EXPECT_TRUE(report.ok) << report.error;
    EXPECT_EQ(placed(), Texts{"samples/Kit/kick.wav"});
    EXPECT_EQ(report.copied_bytes, 0U);
}

TEST_F(ImportSamples, WhoseNameAnotherProcessTakesAtTheSameTimeAreNumbered) {
    copier().before = [](int copy, const std::string& to) {
        if (copy > 1) {
            return 0;
        }
        write_file(to, "another kick");
        return EEXIST;
    };
    set_samples({sample("Kit/kick.wav", "kick")});
    const Report report = import_preset();
    EXPECT_TRUE(report.ok) << report.error;
    EXPECT_EQ(placed(), Texts{"samples/Kit/kick-2.wav"});
    EXPECT_EQ(report.copied_bytes, 4U);
}

TEST_F(ImportSamples, WhoseFolderIsRemovedMeanwhileAreCopiedIntoANewOne) {
    copier().before = [&](int copy, const std::string&) {
        if (copy > 1) {
            return 0;
        }
        fs::remove_all(in_show("samples"));
        return ENOENT;
    };
    set_samples({sample("Kit/kick.wav", "kick"), sample("Kit/snare.wav", "snare")});
    const Report report = import_preset();
    EXPECT_TRUE(report.ok) << report.error;
    EXPECT_EQ(read_file(in_show("samples/Kit/kick.wav")), "kick");
    EXPECT_EQ(read_file(in_show("samples/Kit/snare.wav")), "snare");
    EXPECT_EQ(report.copied_bytes, 9U);
}

TEST_F(ImportSamples, ThatVanishAfterTheyWereFoundEndTheImport) {
    const fs::path kick = sample("Kit/kick.wav", "kick");
    copier().before = [&](int, const std::string&) {
        fs::remove(kick);
        return ENOENT;
    };
    set_samples({kick});
    const Report report = import_preset();
    std::string reason;
    try {
        static_cast<void>(fs::file_size(kick));
    } catch (const fs::filesystem_error& error) {
        reason = error.what();
    }
    EXPECT_EQ(report.error, "the samples couldn't be copied into the show: " + reason);
    EXPECT_EQ(copier().copies.size(), 1U);
}

TEST_F(ImportSamples, AnotherImportPlacesInTheSameFolderAreLeftAlone) {
    // The folder is new to this import, so only the copy detects the other's file.
    copier().before = [&](int copy, const std::string& to) {
        if (copy == 1) {
            write_file(to, "another kick");
            write_file(in_show("samples/Kit/snare.wav"), "snare");
        }
        return 0;
    };
    set_samples({sample("Kit/kick.wav", "kick"), sample("Kit/snare.wav", "SNARE")});
    const Report report = import_preset();
    EXPECT_TRUE(report.ok) << report.error;
    EXPECT_EQ(placed(), (Texts{"samples/Kit/kick-2.wav", "samples/Kit/snare.wav"}));
    EXPECT_EQ(read_file(in_show("samples/Kit/kick.wav")), "another kick");
    EXPECT_EQ(read_file(in_show("samples/Kit/snare.wav")), "snare");
    EXPECT_EQ(report.copied_bytes, 4U);
}

TEST_F(ImportSamples, WhosePlaceALinkToNowhereTakesEndTheImport) {
    fs::create_directories(in_show("samples/Kit"));
    fs::create_symlink("nowhere", in_show("samples/Kit/kick.wav"));
    set_samples({sample("Kit/kick.wav", "kick")});
    const Report report = import_preset();
    const fs::filesystem_error expected("copy failed", folder / "Kit/kick.wav",
                                        in_show("samples/Kit/kick.wav"),
                                        std::error_code(EEXIST, std::generic_category()));
    EXPECT_EQ(report.error,
              std::string("the samples couldn't be copied into the show: ") + expected.what());
    EXPECT_FALSE(fs::exists(in_show("samples/Kit/nowhere")));
    EXPECT_FALSE(fs::exists(in_show("samples/Kit/kick-2.wav")));
}

TEST_F(ImportSamples, WhosePlaceIsAFolderEndTheImport) {
    fs::create_directories(in_show("samples/Kit/kick.wav"));
    set_samples({sample("Kit/kick.wav", "kick")});
    const Report report = import_preset();
    EXPECT_TRUE(report.error.starts_with("the samples couldn't be copied into the show: "));
}

TEST_F(ImportSamples, InAPackageThatIsAFileEndTheImport) {
    write_file(options.package, "a file");
    set_samples({sample("Kit/kick.wav", "kick")});
    const Report report = import_preset();
    EXPECT_TRUE(report.error.starts_with("the samples couldn't be copied into the show: "));
    EXPECT_EQ(read_file(options.package), "a file");
}

TEST_F(ImportSamples, WithANameThatIsNotUtf8AreNotCopied) {
    // CoreFoundation would take the second for a name with U+FFFD in it.
    for (const char* kit : {"Caf\xe9", "Kit \xa9"}) {
        const fs::path kick = folder / kit / "kick.wav";
        std::error_code refused;
        fs::create_directories(kick.parent_path(), refused);
        if (refused) {
            GTEST_SKIP() << "this file system has UTF-8 names only";
        }
        write_file(kick, "kick");
        SampleIndex index;
        index.add_root(kick.parent_path().string());
        options.index = &index;
        set_samples({"/no such folder/kick.wav"});
        const Report report = import_preset();
        const std::string reason = std::make_error_code(std::errc::illegal_byte_sequence).message();
        EXPECT_TRUE(report.error.starts_with("the samples couldn't be copied into the show: "));
        EXPECT_NE(report.error.find(reason), std::string::npos) << report.error;
        EXPECT_TRUE(copier().copies.empty());
    }
}

TEST_F(ImportSamples, IntoAPackageWhosePathIsNotUtf8AreNotCopied) {
    options.package = (folder / "Caf\xe9.lumo").string();
    set_samples({sample("Kit/kick.wav", "kick")});
    const Report report = import_preset();
    EXPECT_TRUE(report.error.starts_with("the samples couldn't be copied into the show: "));
    EXPECT_TRUE(copier().copies.empty());
}

} // namespace
