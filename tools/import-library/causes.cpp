// The tables of docs/report-line.md; a test compares them.
#include "causes.h"

#include <array>
#include <optional>

namespace lumo::library {
namespace {

struct KnownCause {
    std::string_view start; ///< of the error
    std::string_view remedy;
};

constexpr std::string_view could_not_load = "AUSampler couldn't load it";

// The cause of an error is the first of these with which the error begins.
constexpr std::array known_causes{
    KnownCause{"not an EXS instrument or an AUSampler preset",
               "name the instrument, not its folder or its samples"},
    KnownCause{"AUSampler not found", "macOS: repair the system. Does not occur on Linux"},
    KnownCause{"AUSampler initialise failed", "try again; if it fails again, look the number up"},
    KnownCause{"the preset isn't a property list",
               "check path and permission; save the preset again"},
    KnownCause{
        "it uses samples from Apple's sound library: Lumo imports only your own or exported "
        "instruments",
        "in Logic or MainStage, save the instrument with its samples, then import that copy"},
    KnownCause{"a sample wasn't found after loading",
               "add the folder that has them with `--search`"},
    KnownCause{"a sample wasn't found", "add the folder that has them with `--search`"},
    KnownCause{could_not_load, ""},
    KnownCause{"AUSampler's state couldn't be read", "try again; report it"},
    KnownCause{"the samples couldn't be copied into the show",
               "fix the cause, run again: samples that were copied are used"},
    KnownCause{"its state couldn't be written",
               "free some space, run again, remove the truncated file"},
    KnownCause{"check: not a path in the show", "report it"},
    KnownCause{"check: missing from the show", "run again"},
    KnownCause{"check: it didn't load from the show", "look the number up; run again"},
    KnownCause{"the tool ended at it", "fix the folder or the name; earlier lines are correct"},
};

struct KnownStatus {
    std::string_view number;
    std::string_view meaning;
    std::string_view remedy;
};

constexpr std::array known_statuses{
    KnownStatus{"-43",
                "the instrument does not exist, or a file that it plays does not exist and has no "
                "sample's extension",
                "check the path; restore the file that it plays"},
    KnownStatus{"-54",
                "no permission to read the instrument or a sample that exists; a sample in a "
                "folder that cannot be opened counts as not found",
                "give yourself permission to read the file"},
    KnownStatus{"-36", "a sample, or the instrument, could not be read to its end",
                "restore the file from a backup"},
    KnownStatus{"-42", "too many files are open", "raise the limit (`ulimit -n`), run again"},
    KnownStatus{"-10851", "the preset is a property list, but not a state of AUSampler",
                "save it as a preset of AUSampler"},
    KnownStatus{"-10866", "the preset sets parameters of a scope that AUSampler does not have",
                "load the preset in AUSampler and save it again"},
    KnownStatus{"-10868",
                "more than 4,096 groups of the instrument have zones: a state has no numbers for "
                "more layers",
                "split the instrument"},
    KnownStatus{"-108",
                "Linux: memory ran out, or the preset's instrument has more than 4,194,304 layers "
                "and zones together",
                "close other programs, or split the instrument"},
    KnownStatus{"-10871",
                "the instrument file is damaged, is not a regular file, or is larger than 1 GiB",
                "restore it from a backup, or save it again"},
    KnownStatus{"-10875",
                "Linux: libsndfile, which reads WAV and AIFF, is not installed or cannot be loaded",
                "install it (Debian: libsndfile1)"},
    KnownStatus{"1954115647",
                "a sample is not an audio file, or has a format that cannot be read; or a sound "
                "bank is not one",
                "restore the sample from a backup, or save it as WAV or AIFF"},
};

std::optional<Cause> cause_by_status(std::string_view number) {
    for (const KnownStatus& known : known_statuses) {
        if (known.number == number) {
            return Cause{std::string(could_not_load) + " (OSStatus " + std::string(number) +
                             "): " + std::string(known.meaning),
                         std::string(known.remedy)};
        }
    }
    return std::nullopt;
}

} // namespace

std::string_view status_in(std::string_view error) {
    constexpr std::string_view before = "(OSStatus ";
    const std::size_t begin = error.rfind(before);
    if (begin == std::string_view::npos || !error.ends_with(')')) {
        return {};
    }
    error.remove_suffix(1);
    return error.substr(begin + before.size());
}

Cause cause_of(std::string_view error) {
    const std::string_view status = status_in(error);
    if (error.starts_with(could_not_load)) {
        if (const std::optional<Cause> cause = cause_by_status(status)) {
            return *cause;
        }
        return {std::string(error), ""};
    }
    for (const KnownCause& known : known_causes) {
        if (error.starts_with(known.start)) {
            const std::string number =
                status.empty() ? "" : " (OSStatus " + std::string(status) + ")";
            return {std::string(known.start) + number, std::string(known.remedy)};
        }
    }
    return {std::string(error), ""};
}

} // namespace lumo::library
