// The text that sums up a run.
#pragma once

#include "tally.h"

#include <cstddef>
#include <optional>
#include <string>

namespace lumo::library {

/// How a run ended.
enum class RunEnd { finished, interrupted, failed };

/// What a summary says beside the tally.
struct SummaryNotes {
    std::optional<double> seconds;    ///< how long the run took; none for lines of other runs
    std::size_t already_imported = 0; ///< left out because an earlier run imported them
    std::size_t left = 0;             ///< neither imported nor failed when the run ended
    std::size_t unreadable = 0;       ///< folders and links that could not be read
    std::string lines;                ///< the file with the report lines; empty when there is none
    std::string page;                 ///< the page; empty when there is none
};

/// The summary, whole lines in UTF-8 that are safe on a terminal.
std::string summary_text(const Tally& tally, const SummaryNotes& notes);

} // namespace lumo::library
