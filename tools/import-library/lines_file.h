// Files of report lines.
#pragma once

#include "base/descriptor.h"
#include "report.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace lumo::library {

/// What reading a file of report lines came to.
struct LinesRead {
    std::string fault;       ///< why the file could not be read; empty when it could
    std::size_t unknown = 0; ///< lines, but for a torn last one, that are no report lines
};

/// Calls `take` with each report in the file at `path`, in order. A last line that is cut short is
/// passed over.
LinesRead read_lines_file(const std::string& path, const std::function<void(Report&&)>& take);

/// A file that report lines are appended to, each in one write.
class LinesFile {
public:
    /// Opens the file, which is made when missing; a torn last line gets its end. The reason why
    /// that cannot be done, or nothing.
    std::string open(const std::string& path);
    /// Appends a line. The reason why that cannot be done, or nothing.
    std::string append(std::string_view line) const;
    bool is_open() const { return static_cast<bool>(file_); }

private:
    Descriptor file_;
};

} // namespace lumo::library
