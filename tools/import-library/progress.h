// The line that shows a person how far a run is.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace lumo::library {

/// How far a run is.
struct ProgressState {
    std::size_t done = 0;
    std::size_t all = 0;
    std::size_t failed = 0;
    std::uint64_t copied_bytes = 0;
    std::optional<double> seconds_left;
    std::string at_hand; ///< the instrument being imported
};

/// Seconds that the rest takes if it goes on as so far; nothing before anything is done.
std::optional<double> seconds_left(std::size_t done, std::size_t all, double seconds_taken);

/// The line for a terminal of `width` columns, which stays at least one column short of it: what
/// comes last goes first where there is no room. With colours, failures are red.
std::string progress_text(const ProgressState& state, std::size_t width, bool has_colours);

/// The last line of a terminal, redrawn in place at most ten times a second. After each drawing the
/// cursor is at its start, so that a terminal that breaks a line anew when it becomes narrower
/// keeps all of it below the cursor. Does nothing where there is no terminal that can do this.
class StatusLine {
public:
    /// `descriptor` is borrowed; it is asked whether it is a terminal. TERM says "dumb" for one
    /// that cannot draw in place, and NO_COLOR, when it is not empty, that no colours are wanted.
    explicit StatusLine(int descriptor);
    ~StatusLine() { clear(); }
    StatusLine(const StatusLine&) = delete;
    StatusLine& operator=(const StatusLine&) = delete;

    /// Shows what `text(width, has_colours)` gives, unless the last drawing was just now.
    template <typename Text>
    void show(Text text) {
        if (is_due()) {
            draw(text(width(), has_colours_));
        }
    }
    /// Removes the line.
    void clear();
    /// Writes a line of its own for good, the status line away.
    void print(const std::string& line);

private:
    using Clock = std::chrono::steady_clock;

    bool is_due();
    std::size_t width() const;
    void draw(const std::string& line);
    void write_all(const std::string& bytes) const;

    int descriptor_;
    bool is_drawable_;
    bool has_colours_;
    bool is_shown_ = false;
    std::optional<Clock::time_point> drawn_;
};

} // namespace lumo::library
