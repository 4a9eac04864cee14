// Files of report lines.
#pragma once

#include "base/descriptor.h"
#include "report.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace lumo::library {

/// The result of reading a file of report lines.
struct LinesRead {
    std::string fault;       ///< why the file could not be read; empty when it could
    std::size_t unknown = 0; ///< lines that are not report lines, without a truncated last one
};

/// Calls `take` with each report in the file at `path`, in order. A truncated last line is ignored.
LinesRead read_lines_file(const std::string& path, const std::function<void(Report&&)>& take);

/// A file to which report lines are appended, each in one write.
class LinesFile {
public:
    /// Opens the file and creates it if necessary; ends a truncated last line. Returns the reason
    /// of a failure, or an empty text.
    std::string open(const std::string& path);
    /// Appends a line. Returns the reason of a failure, or an empty text.
    std::string append(std::string_view line) const;
    bool is_open() const { return static_cast<bool>(file_); }

private:
    Descriptor file_;
};

} // namespace lumo::library
