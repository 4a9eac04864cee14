// The page about all instruments: one HTML file that loads no other file.
#pragma once

#include "json_writer.h"
#include "report.h"
#include "summary.h"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace lumo::library {

/// The information in the page's head besides the tally.
struct PageHead {
    std::string package; ///< empty when it is not known
    std::string made;    ///< local date and time
    SummaryNotes notes;
};

/// Collects instruments and makes the page. Names are shown as text, even hostile ones.
class Page {
public:
    /// Adds an instrument; its key map is read from the state that the report names.
    void add(const Report& report);

    /// The whole page.
    std::string html(const Tally& tally, const PageHead& head) const;

private:
    std::size_t folder_number(std::string_view folder);
    std::size_t cause_number(const Cause& cause);
    void write_path(std::string_view bytes);
    void write_paths(const std::vector<std::string>& list);
    void write_relinked(const Report& report);
    void write_causes(JsonWriter& json, const Tally& tally) const;
    std::string data(const Tally& tally, const PageHead& head) const;

    JsonWriter instruments_; // a list for each, without brackets around all
    std::map<std::string, std::size_t, std::less<>> folders_;
    std::map<std::string, std::size_t, std::less<>> causes_;
};

/// Writes the page to `path`, completely or not at all; an existing file is replaced, a pipe or a
/// device receives the bytes. Returns the reason of a failure, or an empty text.
std::string write_page(const std::string& path, const std::string& html);

} // namespace lumo::library
