// Splits bytes that arrive in pieces into lines.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace lumo::library {

/// Stores the bytes of an incomplete line. Time is linear in the number of bytes, even for long
/// lines.
class LineSplitter {
public:
    /// Calls `take` with each line that `bytes` completes, without its line end. `take` must not
    /// add bytes.
    template <typename Take>
    void add(std::string_view bytes, Take take) {
        std::size_t searched = pending_.size();
        pending_ += bytes;
        std::size_t begin = 0;
        for (std::size_t end; (end = pending_.find('\n', searched)) != std::string::npos;) {
            take(std::string_view(pending_).substr(begin, end - begin));
            begin = searched = end + 1;
        }
        pending_.erase(0, begin);
    }
    /// The bytes after the last line end.
    const std::string& rest() const { return pending_; }

private:
    std::string pending_;
};

} // namespace lumo::library
