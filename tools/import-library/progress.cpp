// The line consists of parts, the most important first; the name of the current instrument takes
// the remaining space.
#include "progress.h"

#include "text.h"
#include "write_all.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>
#include <vector>

namespace lumo::library {
namespace {

constexpr std::chrono::milliseconds between_drawings(100);
constexpr std::size_t usual_width = 80;
constexpr std::size_t min_name_columns = 6; // columns; a shorter part of a name is not shown

constexpr const char* erase_below = "\x1b[J"; // from the cursor to the end of the screen
constexpr const char* red = "\x1b[31m";
constexpr const char* no_colour = "\x1b[39m";

/// A part of the line: its text, and the bytes that draw it, with colours.
struct Part {
    std::string plain;
    std::string drawn;
};

std::vector<Part> parts_of(const ProgressState& state, bool has_colours) {
    const auto part = [](const std::string& text) { return Part{text, text}; };
    std::vector<Part> parts = {
        part(with_thousands(state.done) + " of " + with_thousands(state.all))};
    const std::string failed = with_thousands(state.failed) + " failed";
    const bool is_red = has_colours && state.failed > 0;
    parts.push_back({failed, is_red ? red + failed + no_colour : failed});
    parts.push_back(part(bytes_text(state.copied_bytes) + " copied"));
    if (state.seconds_left) {
        parts.push_back(part(time_text(*state.seconds_left) + " left"));
    }
    return parts;
}

bool environment_says(const char* name, std::string_view value) {
    const char* found = std::getenv(name);
    return found && found == value;
}

bool is_set(const char* name) {
    const char* found = std::getenv(name);
    return found && *found != '\0';
}

} // namespace

std::optional<double> seconds_left(std::size_t done, std::size_t all, double seconds_taken) {
    if (done == 0) {
        return std::nullopt;
    }
    return seconds_taken / static_cast<double>(done) * static_cast<double>(all - done);
}

std::string progress_text(const ProgressState& state, std::size_t width, bool has_colours) {
    const std::size_t room = width > 0 ? width - 1 : 0;
    std::string line;
    std::size_t used = 0;
    for (const Part& part : parts_of(state, has_colours)) {
        const std::size_t separator = line.empty() ? 0 : 2;
        if (used + separator + part.plain.size() > room) {
            return line.empty() ? cut_to(part.plain, room) : line;
        }
        line += (separator > 0 ? ", " : "") + part.drawn;
        used += separator + part.plain.size();
    }
    if (!state.at_hand.empty() && used + 2 + min_name_columns <= room) {
        line += ": " + cut_to(shown(state.at_hand), room - used - 2);
    }
    return line;
}

StatusLine::StatusLine(int descriptor)
    : descriptor_(descriptor),
      is_drawable_(isatty(descriptor) == 1 && is_set("TERM") && !environment_says("TERM", "dumb")),
      has_colours_(!is_set("NO_COLOR")) {}

void StatusLine::clear() {
    if (is_shown_) {
        write_all(descriptor_, std::string("\r") + erase_below);
        is_shown_ = false;
    }
}

void StatusLine::print(const std::string& line) {
    clear();
    write_all(descriptor_, line + '\n');
}

bool StatusLine::is_due() {
    const Clock::time_point now = Clock::now();
    if (!is_drawable_ || (drawn_ && now - *drawn_ < between_drawings)) {
        return false;
    }
    drawn_ = now;
    return true;
}

std::size_t StatusLine::width() const {
    winsize size{};
    const bool is_known = ioctl(descriptor_, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return is_known ? size.ws_col : usual_width;
}

void StatusLine::draw(const std::string& line) {
    write_all(descriptor_, "\r" + line + erase_below + "\r");
    is_shown_ = true;
}

} // namespace lumo::library
