// The steps of a run in order. Standard output receives the summary, standard error the status line
// and messages about failures.
#include "session.h"

#include "instrument_walk.h"
#include "interrupt.h"
#include "lines_file.h"
#include "own_path.h"
#include "page.h"
#include "progress.h"
#include "summary.h"
#include "text.h"
#include "tool_run.h"

#include <stdio.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <map>
#include <set>
#include <system_error>
#include <utility>

namespace lumo::library {
namespace fs = std::filesystem;
namespace {

constexpr int all_imported = 0;
constexpr int wrong_command_line = 1;
constexpr int some_failed = 2;
constexpr int could_not_finish = 3;
constexpr int ended_by_signal = 128; // plus the signal's number

constexpr std::size_t max_names_listed = 10;

void say(const std::string& text) {
    fputs(text.c_str(), stdout);
    fflush(stdout);
}

void complain(const std::string& text) {
    fputs(("lumo-import-library: " + text + '\n').c_str(), stderr);
}

/// Reports each argument that cannot be read; returns whether there is one.
bool has_bad_argument(const CommandLine& line) {
    bool is_bad = false;
    for (const std::vector<std::string>* paths : {&line.arguments, &line.search}) {
        for (const std::string& path : *paths) {
            if (const std::string fault = fault_of_argument(path); !fault.empty()) {
                complain(shown(path) + ": " + fault);
                is_bad = true;
            }
        }
    }
    return is_bad;
}

/// Reports when no file can be created at `path`, and returns whether that is so. An empty path is
/// ignored.
bool has_bad_page(const std::string& path) {
    const fs::path folder = fs::path(path).parent_path();
    std::error_code error;
    int failure = access(folder.empty() ? "." : folder.c_str(), W_OK | X_OK) != 0 ? errno : 0;
    failure = fs::is_directory(path, error) ? EISDIR : failure;
    if (!path.empty() && failure != 0) {
        complain(shown(path) + ": " + std::generic_category().message(failure));
    }
    return !path.empty() && failure != 0;
}

/// The local date and time.
std::string now_text() {
    const std::time_t now = std::time(nullptr);
    std::array<char, 64> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", std::localtime(&now));
    return text.data();
}

/// Writes the page if one is requested. On failure reports it and returns false.
bool finish_page(const Page& page, const Tally& tally, const PageHead& head) {
    if (head.notes.page.empty()) {
        return true;
    }
    const std::string fault = write_page(head.notes.page, page.html(tally, head));
    if (!fault.empty()) {
        complain(shown(head.notes.page) + ": " + fault);
    }
    return fault.empty();
}

/// Imports one library.
class Import {
public:
    explicit Import(const CommandLine& line) : line_(line) {}

    int run() {
        if (has_bad_argument(line_) || has_bad_page(line_.page) || !open_files()) {
            return wrong_command_line;
        }
        watch_interrupts();
        if (!find()) {
            return ended_by_signal + interrupted_by();
        }
        say_how_many();
        if (line_.is_dry_run || to_do_.empty()) {
            return all_imported;
        }
        const RunEnd end = import();
        return sum_up(end) || end == RunEnd::interrupted ? status(end) : could_not_finish;
    }

private:
    using Clock = std::chrono::steady_clock;

    /// Opens the file for the lines, then reads the lines of an earlier run. In this order, because
    /// both may be the same file, which does not exist in the first run.
    bool open_files() {
        if (!line_.lines.empty()) {
            lines_fault_ = lines_.open(line_.lines);
            if (!lines_fault_.empty()) {
                complain(shown(line_.lines) + ": " + lines_fault_);
                return false;
            }
        }
        if (line_.continue_file.empty()) {
            return true;
        }
        const LinesRead read = read_lines_file(line_.continue_file, [&](Report&& report) {
            if (report.ok) {
                imported_before_.insert(std::move(report.source));
            }
        });
        if (!read.fault.empty()) {
            complain(shown(line_.continue_file) + ": " + read.fault);
        }
        return read.fault.empty();
    }

    /// Finds the instruments for this run. False when it was interrupted.
    bool find() {
        found_ = find_instruments(line_.arguments, [&](std::size_t count, std::size_t folders) {
            status_line_.show([&](std::size_t width, bool) {
                return cut_to("looking for instruments: " + with_thousands(count) + " in " +
                                  counted(folders, "folder"),
                              width - 1);
            });
            return interrupted_by() == 0;
        });
        status_line_.clear();
        const std::uint64_t all = found_.paths.size();
        const auto position = [&](std::uint32_t parts) {
            return found_.paths.begin() + static_cast<std::ptrdiff_t>(all * parts / line_.shard.of);
        };
        std::size_t in_part = 0;
        for (auto path = position(line_.shard.number - 1); path != position(line_.shard.number);
             ++path) {
            ++in_part;
            if (!imported_before_.contains(*path)) {
                to_do_.push_back(*path);
            }
        }
        notes_.already_imported = in_part - to_do_.size();
        notes_.unreadable = found_.unreadable.size();
        return interrupted_by() == 0;
    }

    void say_how_many() {
        for (std::size_t i = 0; i < found_.unreadable.size(); ++i) {
            if (i == max_names_listed) {
                complain("and " + with_thousands(found_.unreadable.size() - i) + " more");
                break;
            }
            complain("cannot be read, left out: " + shown(found_.unreadable[i]));
        }
        std::string text = found_.paths.empty()
                               ? "no instrument found\n"
                               : counted(found_.paths.size(), "instrument") + " in " +
                                     counted(found_.folders, "folder") + '\n';
        if (line_.shard.of > 1) {
            text += "part " + with_thousands(line_.shard.number) + " of " +
                    with_thousands(line_.shard.of) + ": " +
                    counted(to_do_.size() + notes_.already_imported, "instrument") + '\n';
        }
        if (notes_.already_imported > 0) {
            text += with_thousands(notes_.already_imported) +
                    " of them left out: imported before\n" +
                    (to_do_.empty() ? "nothing is left to do\n" : "");
        }
        say(text);
    }

    RunEnd import() {
        const Clock::time_point began = Clock::now();
        const auto seconds = [&] {
            return std::chrono::duration<double>(Clock::now() - began).count();
        };
        const fs::path own = own_path();
        if (own.empty()) {
            complain("the folder of this program, which has lumo-exs-import, is not known "
                     "(on Linux /proc shows it)");
            return RunEnd::failed;
        }
        const std::string tool = (own.parent_path() / "lumo-exs-import").string();
        RunListener listener;
        listener.line = [&](std::string_view line, std::size_t instrument) {
            take(line, instrument);
        };
        listener.ended_at = [&](std::size_t instrument, const std::string& reason) {
            status_line_.print("lumo-import-library: lumo-exs-import ended at " +
                               shown(to_do_[instrument]) + ": " + reason);
            take(line_without_import(to_do_[instrument], std::string(tool_ended) + reason),
                 instrument);
        };
        listener.message = [&](std::string_view text) {
            status_line_.print("lumo-exs-import: " + shown(text));
        };
        listener.may_go_on = [&] {
            status_line_.show([&](std::size_t width, bool has_colours) {
                return progress_text(progress(seconds()), width, has_colours);
            });
            return interrupted_by() == 0 && lines_fault_.empty();
        };
        const RunEnd end =
            run_tool(tool_command(tool, line_.package, line_.states, line_.search, line_.arguments),
                     to_do_, listener);
        status_line_.clear();
        notes_.seconds = seconds();
        return lines_fault_.empty() ? end : RunEnd::failed;
    }

    ProgressState progress(double seconds) const {
        const std::size_t done = tally_.imported + tally_.failed;
        const std::string at_hand = done == to_do_.size() ? "" : fs::path(to_do_[done]).stem();
        return {done,
                to_do_.size(),
                tally_.failed,
                tally_.copied_bytes,
                seconds_left(done, to_do_.size(), seconds),
                at_hand};
    }

    void take(std::string_view line, std::size_t instrument) {
        if (lines_.is_open() && lines_fault_.empty()) {
            lines_fault_ = lines_.append(line);
        }
        std::optional<Report> report = parse_report(line);
        if (!report) {
            report = parse_report(
                line_without_import(to_do_[instrument], "the tool gave no report line for it"));
        }
        tally_.add(*report);
        if (!line_.page.empty()) {
            reports_.push_back(std::move(*report));
        }
    }

    /// Reports how the run ended and writes the summary and the page. False when the page could not
    /// be written.
    bool sum_up(RunEnd end) {
        notes_.lines = line_.lines;
        notes_.left = to_do_.size() - tally_.imported - tally_.failed;
        if (!lines_fault_.empty()) {
            complain(shown(line_.lines) + ": " + lines_fault_ + "; the run ends here");
        } else if (end == RunEnd::failed) {
            complain("the run could not be finished");
        }
        notes_.page = line_.page;
        Page page;
        for (const Report& report : reports_) {
            page.add(report);
        }
        const bool is_written = finish_page(page, tally_, {line_.package, now_text(), notes_});
        notes_.page = is_written ? line_.page : "";
        say('\n' + summary_text(tally_, notes_));
        return is_written;
    }

    int status(RunEnd end) const {
        if (end == RunEnd::finished) {
            return tally_.failed > 0 ? some_failed : all_imported;
        }
        return end == RunEnd::interrupted ? ended_by_signal + interrupted_by() : could_not_finish;
    }

    const CommandLine& line_;
    StatusLine status_line_{STDERR_FILENO};
    LinesFile lines_;
    std::string lines_fault_;
    std::set<std::string> imported_before_;
    Instruments found_;
    std::vector<std::string> to_do_;
    Tally tally_;
    /// For the page, which reads their states at the end: while it reads, lines would wait in the
    /// pipe from the tool, where they are lost when this program is killed.
    std::vector<Report> reports_;
    SummaryNotes notes_;
};

} // namespace

int import_library(const CommandLine& line) {
    return Import(line).run();
}

int sum_up(const CommandLine& line) {
    if (has_bad_page(line.page)) {
        return wrong_command_line;
    }
    std::map<std::string, Report> reports; // the last line of each instrument
    for (const std::string& file : line.from) {
        const LinesRead read = read_lines_file(file, [&](Report&& report) {
            reports.insert_or_assign(report.source, std::move(report));
        });
        if (!read.fault.empty()) {
            complain(shown(file) + ": " + read.fault);
            return wrong_command_line;
        }
        if (read.unknown > 0) {
            complain(shown(file) + ": " + counted(read.unknown, "line") +
                     " passed over: no report lines");
        }
    }
    Tally tally;
    Page page;
    for (const auto& [source, report] : reports) {
        tally.add(report);
        if (!line.page.empty()) {
            page.add(report);
        }
    }
    SummaryNotes notes;
    notes.page = line.page;
    const bool is_written = finish_page(page, tally, {"", now_text(), notes});
    notes.page = is_written ? line.page : "";
    say(reports.empty() ? "no instrument found\n" : summary_text(tally, notes));
    if (!is_written) {
        return could_not_finish;
    }
    return tally.failed > 0 ? some_failed : all_imported;
}

} // namespace lumo::library
