// The status line as text; tests/library/terminal_test.py tests it on a terminal.
#include "progress.h"

#include <gtest/gtest.h>

#include <clocale>

namespace {

using namespace lumo::library;

const ProgressState usual = {812, 2000, 14, 1200000000, 130.0, "Strings Legato Espressivo"};

TEST(Progress, SaysAllThatThereIsRoomFor) {
    EXPECT_EQ(progress_text(usual, 200, false),
              "812 of 2,000, 14 failed, 1.2 GB copied, 2 min 10 s left: Strings Legato Espressivo");
}

TEST(Progress, StaysShortOfTheWidthWhateverThatIs) {
    for (std::size_t width = 0; width < 120; ++width) {
        EXPECT_LE(progress_text(usual, width, false).size(), width > 0 ? width - 1 : 0) << width;
    }
    EXPECT_EQ(progress_text(usual, 80, false),
              "812 of 2,000, 14 failed, 1.2 GB copied, 2 min 10 s left: Strings Legato Espres~");
    EXPECT_EQ(progress_text(usual, 60, false),
              "812 of 2,000, 14 failed, 1.2 GB copied, 2 min 10 s left");
    EXPECT_EQ(progress_text(usual, 40, false), "812 of 2,000, 14 failed, 1.2 GB copied");
    EXPECT_EQ(progress_text(usual, 20, false), "812 of 2,000");
    EXPECT_EQ(progress_text(usual, 6, false), "812 ~");
    EXPECT_EQ(progress_text(usual, 1, false), "");
}

TEST(Progress, ShowsEachPartFromTheWidthOnThatItNeeds) {
    const std::string whole =
        "812 of 2,000, 14 failed, 1.2 GB copied, 2 min 10 s left: Strings Legato Espressivo";
    const auto shown = [](std::size_t width) { return progress_text(usual, width, false); };
    for (const std::size_t end : {whole.find(", 14"), whole.find(", 1.2"), whole.find(", 2 min"),
                                  whole.find(": "), whole.size()}) {
        EXPECT_EQ(shown(end + 1), whole.substr(0, end));
        EXPECT_NE(shown(end), whole.substr(0, end));
    }
    const std::size_t name = whole.find("Strings");
    EXPECT_EQ(shown(name + 7), whole.substr(0, name) + "Strin~");
    EXPECT_EQ(shown(name + 6), whole.substr(0, name - 2));
}

TEST(Progress, BeginsWithNothingDone) {
    EXPECT_EQ(progress_text({}, 80, true), "0 of 0, 0 failed, 0 bytes copied");
}

TEST(Progress, HasFailuresInRedWhereColoursAreWanted) {
    EXPECT_EQ(progress_text(usual, 40, true),
              "812 of 2,000, \x1b[31m14 failed\x1b[39m, 1.2 GB copied");
    ProgressState clean = usual;
    clean.failed = 0;
    EXPECT_EQ(progress_text(clean, 40, true), "812 of 2,000, 0 failed, 1.2 GB copied");
}

TEST(Progress, ShowsHostileNamesAsText) {
    ProgressState hostile = usual;
    hostile.at_hand = "\x1b[2J\xff";
    EXPECT_EQ(progress_text(hostile, 200, false),
              "812 of 2,000, 14 failed, 1.2 GB copied, 2 min 10 s left: \\x1b[2J\\xff");
}

TEST(Progress, ExpectsTheRestToGoOnAsBefore) {
    EXPECT_FALSE(seconds_left(0, 10, 5).has_value());
    EXPECT_EQ(seconds_left(2, 10, 5), 20.0);
    EXPECT_EQ(seconds_left(10, 10, 5), 0.0);
}

} // namespace
