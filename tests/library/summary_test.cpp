// The whole text of the summary; causes and remedies, compared with docs/report-line.md.
#include "summary.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <sstream>

namespace {

using namespace lumo::library;

Report imported(std::uint64_t samples, std::uint64_t bytes) {
    Report report;
    report.ok = true;
    report.samples = samples;
    report.copied_bytes = bytes;
    return report;
}

Report failed(const std::string& error, const std::vector<std::string>& unresolved = {}) {
    Report report;
    report.error = error;
    report.unresolved = unresolved;
    return report;
}

TEST(Summary, OfALibraryWithFailures) {
    Tally tally;
    for (int i = 0; i < 1200; ++i) {
        tally.add(imported(8, 1000000));
    }
    tally.add(failed("a sample wasn't found: a.wav",
                     {"/Volumes/Samples/Strings/a.wav", "/Volumes/Samples/Strings/b.wav"}));
    tally.add(failed("a sample wasn't found: b.wav",
                     {"/Volumes/Samples/Strings/b.wav", "/Volumes/Samples/Brass/c.wav"}));
    tally.add(failed("AUSampler couldn't load it (OSStatus -10871)"));
    tally.add(failed("AUSampler couldn't load it (OSStatus 7)"));
    SummaryNotes notes;
    notes.seconds = 192.4;
    notes.lines = "lines.jsonl";
    notes.page = "library.html";
    notes.already_imported = 3;
    notes.unreadable = 1;
    EXPECT_EQ(summary_text(tally, notes),
              R"(1,204 instruments: 1,200 imported, 4 failed
9,600 samples, 1.2 GB copied, 3 min 12 s
3 left out: imported before
1 left out: folders and links that could not be read

Failed, by cause:
        2 a sample wasn't found
          To do: add the folder that has them with --search
        1 AUSampler couldn't load it (OSStatus -10871): the instrument file is damaged, is not a regular file, or is larger than 1 GiB
          To do: restore it from a backup, or save it again
        1 AUSampler couldn't load it (OSStatus 7)

Missing samples, by recorded folder:
        2 samples were recorded below /Volumes/Samples/Strings: add --search with the folder that holds them now
        1 sample was recorded below /Volumes/Samples/Brass: add --search with the folder that holds it now

What to do next:
          find where the missing samples are now, add a --search for each folder,
          and run again with --continue lines.jsonl, which skips what is imported
          open library.html in a browser: it shows each instrument
)");
}

TEST(Summary, OfALibraryWithoutFailures) {
    Tally tally;
    tally.add(imported(1, 812));
    EXPECT_EQ(summary_text(tally, {}), R"(1 instrument: 1 imported, 0 failed
1 sample, 812 bytes copied

What to do next:
          nothing: all are imported
)");
}

TEST(Summary, OfARunThatWasInterrupted) {
    Tally tally;
    tally.add(imported(1, 0));
    SummaryNotes notes;
    notes.seconds = 2;
    notes.left = 1999;
    notes.lines = "lines";
    EXPECT_EQ(summary_text(tally, notes), R"(1 instrument: 1 imported, 0 failed
1 sample, 0 bytes copied, 2.0 s
1,999 not imported: the run ended before

What to do next:
          run again with --continue lines, which skips what is imported
)");
}

TEST(Summary, OfFailuresWithoutAFileOfLines) {
    Tally tally;
    tally.add(failed("its state couldn't be written"));
    EXPECT_EQ(summary_text(tally, {}), R"(1 instrument: 0 imported, 1 failed
0 samples, 0 bytes copied

Failed, by cause:
        1 its state couldn't be written
          To do: free some space, run again, remove the truncated file

What to do next:
          do what each cause says, and run again, naming only the instruments that are left
          (with --lines FILE, a later run can skip what is imported)
)");
}

TEST(Summary, ShowsHostileNamesAsText) {
    Tally tally;
    tally.add(failed("\x1b[2Jodd", {"/a\x1b]0;x\x07/\xff/s.wav"}));
    SummaryNotes notes;
    notes.lines = "\x1b[1m";
    const std::string text = summary_text(tally, notes);
    EXPECT_EQ(text.find('\x1b'), std::string::npos);
    EXPECT_EQ(text.find('\x07'), std::string::npos);
    EXPECT_NE(text.find("below /a\\x1b]0;x\\x07/\\xff: add"), std::string::npos) << text;
}

TEST(Tally, CountsEachMissingSampleOnce) {
    Tally tally;
    tally.add(failed("x", {"/a/1.wav", "/a/2.wav"}));
    tally.add(failed("x", {"/a/2.wav", "/b/1.wav", "bare.wav", "/root.wav"}));
    const auto groups = tally.missing();
    ASSERT_EQ(groups.size(), 4U);
    EXPECT_EQ(groups[0].folder, "/a");
    EXPECT_EQ(groups[0].samples, 2U);
    EXPECT_EQ(groups[1].folder, "");
    EXPECT_EQ(groups[2].folder, "/");
    EXPECT_EQ(groups[3].folder, "/b");
}

TEST(Tally, GroupsManyFoldersByThoseFurtherUp) {
    Tally tally;
    for (int i = 0; i < 30; ++i) {
        const std::string number = std::to_string(i);
        tally.add(failed("x", {"/Volumes/Old/Strings/Violin " + number + "/a.wav",
                               "/Volumes/Old/Brass/" + number + "/a.wav",
                               "/Volumes/Old/Strings/Viola/" + number + ".wav"}));
    }
    const auto groups = tally.missing();
    ASSERT_EQ(groups.size(), 2U);
    EXPECT_EQ(groups[0].folder, "/Volumes/Old/Strings");
    EXPECT_EQ(groups[0].samples, 60U);
    EXPECT_EQ(groups[1].folder, "/Volumes/Old/Brass");
    EXPECT_EQ(groups[1].samples, 30U);
}

TEST(Tally, GroupsNoMoreThanTenFoldersByThemselves) {
    Tally tally;
    for (int i = 0; i < 10; ++i) {
        tally.add(failed("x", {"/Old/" + std::to_string(i) + "/a.wav"}));
    }
    EXPECT_EQ(tally.missing().size(), 10U);
    tally.add(failed("x", {"/Old/10/a.wav"}));
    ASSERT_EQ(tally.missing().size(), 1U);
    EXPECT_EQ(tally.missing()[0].folder, "/Old");
}

TEST(Tally, ListsAllFoldersAtTheRootHoweverManyThereAre) {
    Tally tally;
    for (int i = 10; i < 21; ++i) {
        tally.add(failed("x", {"/" + std::to_string(i) + "/a/a.wav"}));
    }
    const auto groups = tally.missing();
    ASSERT_EQ(groups.size(), 11U);
    EXPECT_EQ(groups.front().folder, "/10");
    EXPECT_EQ(groups.back().folder, "/20");
}

// The rows of the tables in docs/report-line.md, as lists of trimmed cells.
std::vector<std::vector<std::string>> table_rows(const std::string& heading) {
    std::istringstream page(lumo::test::read_file(LUMO_SOURCE "/docs/report-line.md"));
    std::vector<std::vector<std::string>> rows;
    bool is_inside = false;
    for (std::string text; std::getline(page, text);) {
        is_inside = text.starts_with(heading) || (is_inside && text.starts_with('|'));
        if (!is_inside) {
            continue;
        }
        std::vector<std::string> cells;
        std::istringstream row(text.substr(1));
        for (std::string cell; std::getline(row, cell, '|');) {
            const std::size_t begin = cell.find_first_not_of(' ');
            const std::size_t end = cell.find_last_not_of(' ');
            cells.push_back(begin == std::string::npos ? "" : cell.substr(begin, end - begin + 1));
        }
        rows.push_back(cells);
    }
    rows.erase(rows.begin(), rows.begin() + std::min<std::ptrdiff_t>(2, std::ssize(rows)));
    return rows;
}

/// An error as the page shows it ("`...: FILE`"), with an example for the variable part.
std::string example(const std::string& cell) {
    const std::string text = std::regex_replace(cell, std::regex("`"), "");
    return std::regex_replace(text, std::regex("\\b(FILE|REASON|PATH|N)\\b"), "5");
}

TEST(Causes, HaveTheRemediesOfTheReportLinesPage) {
    const auto rows = table_rows("| text | what it means |");
    ASSERT_EQ(rows.size(), 15U);
    for (const auto& row : rows) {
        const std::string error =
            row[0].starts_with("(no line") ? "the tool ended at it: signal 6" : example(row[0]);
        // A link to another page is of no use in a terminal.
        const std::string text = row[2].substr(0, row[2].find("; ["));
        const std::string remedy =
            text.starts_with("as for ") ? "add the folder that has them with `--search`" : text;
        const Cause cause = cause_of(error);
        EXPECT_EQ(cause.remedy, remedy) << error;
        EXPECT_TRUE(error.starts_with(cause.text.substr(0, cause.text.find(" (")))) << error;
    }
}

TEST(Causes, OfTheSamplersStatusesAreThoseOfTheReportLinesPage) {
    const auto rows = table_rows("| OSStatus | on loading |");
    ASSERT_EQ(rows.size(), 11U);
    for (const auto& row : rows) {
        const std::string error = "AUSampler couldn't load it (OSStatus " + row[0] + ")";
        const Cause cause = cause_of(error);
        EXPECT_EQ(cause.text, error + ": " + row[1]);
        EXPECT_EQ(cause.remedy, row[2]);
    }
}

TEST(Causes, JoinWhatVariesAndKeepWhatDoesNot) {
    EXPECT_EQ(cause_of("a sample wasn't found: a.wav").text, "a sample wasn't found");
    EXPECT_EQ(cause_of("a sample wasn't found after loading: a.wav").text,
              "a sample wasn't found after loading");
    EXPECT_EQ(cause_of("check: it didn't load from the show (OSStatus -54)").text,
              "check: it didn't load from the show (OSStatus -54)");
    EXPECT_EQ(cause_of("something new: x").text, "something new: x");
    EXPECT_EQ(cause_of("something new: x").remedy, "");
}

} // namespace
