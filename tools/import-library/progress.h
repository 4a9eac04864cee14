// The line that shows the progress of a run.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace lumo::library {

/// The progress of a run.
struct ProgressState {
    std::size_t done = 0;
    std::size_t all = 0;
    std::size_t failed = 0;
    std::uint64_t copied_bytes = 0;
    std::optional<double> seconds_left;
    std::string at_hand; ///< the instrument being imported
};

/// The remaining seconds at the average speed so far; nothing when `done` is 0.
std::optional<double> seconds_left(std::size_t done, std::size_t all, double seconds_taken);

/// The line for a terminal of `width` columns, at least one column shorter than that. Without
/// enough room its last parts are omitted first. With colours, failures are red.
std::string progress_text(const ProgressState& state, std::size_t width, bool has_colours);

/// The last line of a terminal, redrawn in place at most ten times a second. After each drawing the
/// cursor is at the line's start, so that all of it stays below the cursor when the terminal
/// becomes narrower and wraps it. Does nothing without a terminal that can do this. Failures to
/// write are ignored.
class StatusLine {
public:
    /// `descriptor` is borrowed. Nothing is drawn unless it is a terminal and TERM is neither empty
    /// nor "dumb". A NO_COLOR that is not empty disables colours.
    explicit StatusLine(int descriptor);
    ~StatusLine() { clear(); }
    StatusLine(const StatusLine&) = delete;
    StatusLine& operator=(const StatusLine&) = delete;

    /// Draws the result of `text(width, has_colours)`, unless the last drawing was less than 100 ms
    /// ago.
    template <typename Text>
    void show(Text text) {
        if (is_due()) {
            draw(text(width(), has_colours_));
        }
    }
    /// Removes the line.
    void clear();
    /// Removes the status line and prints a permanent line.
    void print(const std::string& line);

private:
    using Clock = std::chrono::steady_clock;

    bool is_due();
    std::size_t width() const;
    void draw(const std::string& line);

    int descriptor_;
    bool is_drawable_;
    bool has_colours_;
    bool is_shown_ = false;
    std::optional<Clock::time_point> drawn_;
};

} // namespace lumo::library
