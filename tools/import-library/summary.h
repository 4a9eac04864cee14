// The summary of a run.
#pragma once

#include "tally.h"

#include <cstddef>
#include <optional>
#include <string>

namespace lumo::library {

/// How a run ended.
enum class RunEnd { finished, interrupted, failed };

/// The information in a summary besides the tally.
struct SummaryNotes {
    std::optional<double> seconds;    ///< duration of the run; none for lines of earlier runs
    std::size_t already_imported = 0; ///< instruments skipped because an earlier run imported them
    std::size_t left = 0;             ///< neither imported nor failed when the run ended
    std::size_t unreadable = 0;       ///< folders and links that could not be read
    std::string lines;                ///< the file of report lines; empty when there is none
    std::string page;                 ///< the page; empty when there is none
};

/// The summary: complete lines of UTF-8 that are safe to print on a terminal.
std::string summary_text(const Tally& tally, const SummaryNotes& notes);

} // namespace lumo::library
