// Which paths belong to Apple's sound library.
#include "apple_library.h"

#include <gtest/gtest.h>

namespace lumo::exs::relink {
namespace {

TEST(AppleLibrary, HoldsWhatLiesUnderItsRoots) {
    for (const char* path : {
             "/Library/Application Support/GarageBand/Instrument Library/Sampler/a.wav",
             "/Library/Application Support/Logic/EXS Factory Samples/a.aif",
             "/Library/Application Support/Logic/a.aif",
             "/Library/Application Support/MainStage/a.aif",
             "/Library/Application Support/com.apple.musicapps.content/Samples/a.caf",
             "/Library/Audio/Apple Loops/Apple/01 Hip Hop/a.caf",
             "/Library/Audio/Impulse Responses/Apple/Halls/a.aif",
             "/System/Library/Components/CoreAudio.component/Contents/Resources/gs_instruments.dls",
             "/System/Library/Sounds/Ping.aiff",
             "/Applications/GarageBand.app/Contents/Resources/a.aif",
             "/Applications/Logic Pro.app/Contents/Resources/Samples/a.aif",
             "/Applications/Logic Pro X.app/Contents/Resources/a.aif",
             "/Applications/MainStage.app/Contents/Resources/a.aif",
             "/Users/ann/Music/Logic Pro Library.bundle/Samples/a.caf",
             "/Users/Shared/Logic Pro Sounds/Logic Pro Library.bundle/Samples/a.caf",
         }) {
        EXPECT_TRUE(is_in_apple_library(path)) << path;
    }
}

TEST(AppleLibrary, HoldsWhatNamesItByItselfInsideAHomeFoldersLibraryToo) {
    for (const char* path : {
             "/Users/ann/Library/Logic Pro Library.bundle/a.wav",
             "/Users/ann/Library/Application Support/LOGIC PRO LIBRARY.bundle/Samples/a.caf",
             "/Users/ann/Library/Applications/Logic Pro.app/Contents/Resources/a.aif",
             "/home/ann/Library/Logic Pro X.app/Contents/Resources/a.aif",
             "/Users/ann/Library/GarageBand.app/Contents/Resources/a.aif",
             "/Volumes/Old/Users/ann/Library/MainStage.app/Contents/Resources/a.aif",
         }) {
        EXPECT_TRUE(is_in_apple_library(path)) << path;
    }
}

TEST(AppleLibrary, MayBeSharedByAllUsers) {
    for (const char* path : {
             "/Users/Shared/Library/Application Support/Logic/EXS Factory Samples/a.aif",
             "/users/shared/Library/Audio/Apple Loops/Apple/a.caf",
             "/Volumes/Old/Users/Shared/Library/Application Support/GarageBand/a.aif",
         }) {
        EXPECT_TRUE(is_in_apple_library(path)) << path;
    }
    EXPECT_FALSE(is_in_apple_library("/home/shared/Library/Application Support/Logic/a.aif"));
}

TEST(AppleLibrary, IsNotHiddenByAFolderThatIsCalledAsAHomeIs) {
    for (const char* path : {
             "/Library/Application Support/Logic/Users/ann/Library/a.wav",
             "/Volumes/A/old/Users/ann/Library/Application Support/Logic/a.wav",
             "/Users/ann/Disk/Users/ann/Library/Application Support/Logic/a.wav",
         }) {
        EXPECT_TRUE(is_in_apple_library(path)) << path;
    }
}

TEST(AppleLibrary, BeginsAtTheLastNamesOfItsRootsOnly) {
    for (const char* name :
         {"Logic", "garageband", "MainStage", "com.apple.musicapps.content", "Apple",
          "gs_instruments.dls", "Sounds", "Resources", "Logic Pro Library.bundle"}) {
        EXPECT_TRUE(may_enter_apple_library(name)) << name;
    }
    for (const char* name : {"", "Library", "Application Support", "Logic Pro.app", "Logic 2"}) {
        EXPECT_FALSE(may_enter_apple_library(name)) << name;
    }
}

TEST(AppleLibrary, MayHaveBeenMovedToAnotherVolume) {
    for (const char* path : {
             "/Volumes/Sounds/Library/Application Support/Logic/EXS Factory Samples/a.aif",
             "/mnt/disk/old/Library/Application Support/GarageBand/Sampler Files/a.aif",
             "/Volumes/Sounds/Library/Audio/Apple Loops/Apple/a.caf",
             "/Volumes/Sounds/Logic Pro Library.bundle/Samples/a.caf",
             "Library/Application Support/Logic/a.aif",
         }) {
        EXPECT_TRUE(is_in_apple_library(path)) << path;
    }
}

TEST(AppleLibrary, IsRecognisedInAnyLetterCase) {
    EXPECT_TRUE(is_in_apple_library("/LIBRARY/application support/LOGIC/a.aif"));
    EXPECT_TRUE(is_in_apple_library("/volumes/x/logic pro library.BUNDLE/a.caf"));
}

TEST(AppleLibrary, IsRecognisedThroughComponentsThatSayNothing) {
    EXPECT_TRUE(is_in_apple_library("//Library/./Application Support///Logic/./a.aif"));
    EXPECT_TRUE(is_in_apple_library("/Library/Audio/../Application Support/Logic/a.aif"));
    EXPECT_FALSE(is_in_apple_library("/Library/Application Support/Logic/../Mine/a.aif"));
}

TEST(AppleLibrary, IsNotWhatMerelyLooksLikeIt) {
    for (const char* path : {
             "/Volumes/A/My Logic Pro Library.bundle copy/a.wav",
             "/Volumes/A/Logic Pro Library.bundle copy/a.wav",
             "/Volumes/A/Logic Pro Library/a.wav",
             "/Library/Application Support/Logic Samples/a.wav",
             "/Library/Application Support/a.wav",
             "/My Library/Application Support/Logic/a.wav",
             "/Library/Application Support Logic/a.wav",
             "/Library/Application Support/My/Logic/a.wav",
             "/Library/Audio/Apple Loops/User Loops/a.caf",
             "/Volumes/A/Logic/EXS Factory Samples/a.wav",
             "/Applications/Logic Pro.app/a.wav",
             "/Users/ann/Music/Audio Music Apps/Samples/a.wav",
             "",
             "/",
         }) {
        EXPECT_FALSE(is_in_apple_library(path)) << path;
    }
}

TEST(AppleLibrary, HoldsNothingOfAHomeFoldersOwnLibrary) {
    for (const char* path : {
             "/Users/ann/Library/Application Support/Logic/Sampler Instruments/a.wav",
             "/Users/ann/Library/Audio/Apple Loops/Apple/a.caf",
             "/home/ann/Library/Application Support/GarageBand/a.wav",
             "/Volumes/Backup/Users/ann/Library/Application Support/Logic/a.wav",
             "/users/ann/library/Application Support/Logic/a.wav",
             "/System/Volumes/Data/Users/ann/Library/Application Support/Logic/a.wav",
             "/mnt/mac/Users/ann/Library/Application Support/Logic/a.wav",
             "/media/ann/Macintosh HD/Users/bob/Library/Application Support/Logic/a.wav",
             "/run/media/ann/Macintosh HD/Users/bob/Library/Application Support/Logic/a.wav",
         }) {
        EXPECT_FALSE(is_in_apple_library(path)) << path;
    }
    EXPECT_TRUE(is_in_apple_library("/Users/ann/Disk/Library/Application Support/Logic/a.wav"));
}

} // namespace
} // namespace lumo::exs::relink
