// The summary: totals, failures by cause with the remedy, missing samples by folder, the next step.
#include "summary.h"

#include "text.h"

#include <algorithm>

namespace lumo::library {
namespace {

constexpr std::size_t number_width = 9;

/// A right-aligned number.
std::string column(const std::string& number) {
    return std::string(number_width - std::min(number.size(), number_width), ' ') + number + " ";
}

std::string indented(const std::string& text) {
    return column("") + text + '\n';
}

std::string totals(const Tally& tally, const SummaryNotes& notes) {
    std::string text = counted(tally.imported + tally.failed, "instrument") + ": " +
                       with_thousands(tally.imported) + " imported, " +
                       with_thousands(tally.failed) + " failed\n";
    text += counted(tally.samples, "sample") + ", " + bytes_text(tally.copied_bytes) + " copied";
    text += notes.seconds ? ", " + time_text(*notes.seconds) + "\n" : "\n";
    if (notes.already_imported > 0) {
        text += with_thousands(notes.already_imported) + " left out: imported before\n";
    }
    if (notes.left > 0) {
        text += with_thousands(notes.left) + " not imported: the run ended before\n";
    }
    if (notes.unreadable > 0) {
        text += with_thousands(notes.unreadable) +
                " left out: folders and links that could not be read\n";
    }
    return text;
}

/// A text of the documents without its backquotes.
std::string plain(std::string text) {
    std::erase(text, '`');
    return text;
}

std::string failures(const Tally& tally) {
    std::string text = "\nFailed, by cause:\n";
    for (const CauseCount& count : tally.causes()) {
        text += column(with_thousands(count.failures)) + shown(count.cause.text) + '\n';
        if (!count.cause.remedy.empty()) {
            text += indented("To do: " + plain(count.cause.remedy));
        }
    }
    return text;
}

std::string missing_samples(const std::vector<MissingSamples>& folders) {
    std::string text = "\nMissing samples, by recorded folder:\n";
    for (const MissingSamples& missing : folders) {
        text += column(with_thousands(missing.samples)) +
                (missing.samples == 1 ? "sample was recorded " : "samples were recorded ") +
                (missing.folder.empty() ? "without a folder" : "below " + shown(missing.folder)) +
                ": add --search with the folder that holds " +
                (missing.samples == 1 ? "it" : "them") + " now\n";
    }
    return text;
}

/// How to run again without importing an instrument twice, as lines.
std::vector<std::string> go_on(const SummaryNotes& notes) {
    if (notes.lines.empty()) {
        return {"run again, naming only the instruments that are left",
                "(with --lines FILE, a later run can skip what is imported)"};
    }
    return {"run again with --continue " + shown(notes.lines) + ", which skips what is imported"};
}

std::string next_step(const Tally& tally, const SummaryNotes& notes, bool is_missing) {
    std::string text = "\nWhat to do next:\n";
    if (tally.failed == 0 && notes.left == 0) {
        text += indented("nothing: all are imported");
    } else {
        std::vector<std::string> lines = go_on(notes);
        if (is_missing) {
            text +=
                indented("find where the missing samples are now, add a --search for each folder,");
            lines.front() = "and " + lines.front();
        } else if (tally.failed > 0) {
            lines.front() = "do what each cause says, and " + lines.front();
        }
        for (const std::string& line : lines) {
            text += indented(line);
        }
    }
    if (!notes.page.empty()) {
        text += indented("open " + shown(notes.page) + " in a browser: it shows each instrument");
    }
    return text;
}

} // namespace

std::string summary_text(const Tally& tally, const SummaryNotes& notes) {
    const std::vector<MissingSamples> missing = tally.missing();
    std::string text = totals(tally, notes);
    text += tally.failed > 0 ? failures(tally) : "";
    text += missing.empty() ? "" : missing_samples(missing);
    return text + next_step(tally, notes, !missing.empty());
}

} // namespace lumo::library
