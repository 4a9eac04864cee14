// Starts the tool repeatedly, each time with as many instruments as the command line can hold.
#include "tool_run.h"

#include "tool_process.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

namespace lumo::library {
namespace {

constexpr int max_deaths_in_a_row = 3;

class Run {
public:
    Run(const std::vector<std::string>& command, const std::vector<std::string>& instruments,
        const RunListener& listener)
        : command_(command), instruments_(instruments), listener_(listener),
          room_(room_for_arguments()) {
        for (const std::string& word : command) {
            room_ -= std::min(room_, size_as_argument(word));
        }
    }

    RunEnd run() {
        while (next_ < instruments_.size()) {
            const std::size_t end = next_ + fitting(instruments_, next_, room_);
            if (!call(end)) {
                return RunEnd::failed;
            }
            if (is_stopped_) {
                return RunEnd::interrupted;
            }
        }
        return RunEnd::finished;
    }

private:
    /// Starts the tool with the instruments up to `end`. False when the run cannot continue.
    bool call(std::size_t end) {
        std::vector<std::string> words = command_;
        const auto instrument = [&](std::size_t number) {
            return instruments_.begin() + static_cast<std::ptrdiff_t>(number);
        };
        words.insert(words.end(), instrument(next_), instrument(end));
        try {
            ToolProcess tool(words);
            read(tool, end);
            const std::string reason = tool.wait();
            // Both processes receive Ctrl-C; the tool may end before this process has handled it.
            is_stopped_ = !listener_.may_go_on() || is_stopped_;
            return is_stopped_ || next_ == end || go_on_after(reason);
        } catch (const std::system_error& error) {
            if (error.code() == std::errc::argument_list_too_long && end - next_ > 1) {
                room_ /= 2;
                return true;
            }
            listener_.message("cannot be started: " + error.code().message());
            return false;
        }
    }

    void read(ToolProcess& tool, std::size_t end) {
        while (tool.has_output()) {
            tool.read_output(
                [&](std::string_view line) {
                    if (next_ < end) {
                        listener_.line(line, next_);
                        ++next_;
                        deaths_in_a_row_ = 0;
                    }
                },
                listener_.message);
            if (!listener_.may_go_on() && !is_stopped_) {
                tool.terminate();
                is_stopped_ = true;
            }
        }
    }

    /// Called when the tool ended before its last instrument: the run continues after the current
    /// instrument, unless this has happened too often.
    bool go_on_after(const std::string& reason) {
        listener_.ended_at(next_, reason);
        ++next_;
        ++deaths_in_a_row_;
        return deaths_in_a_row_ < max_deaths_in_a_row;
    }

    const std::vector<std::string>& command_;
    const std::vector<std::string>& instruments_;
    const RunListener& listener_;
    std::size_t room_;
    std::size_t next_ = 0; // the instrument that the tool is importing
    int deaths_in_a_row_ = 0;
    bool is_stopped_ = false;
};

/// The folder that the tool would search because of an argument if it had all of them.
std::string search_folder(const std::string& argument) {
    const std::filesystem::path path = argument;
    std::error_code error;
    return std::filesystem::is_directory(path, error) ? argument : path.parent_path().string();
}

} // namespace

std::vector<std::string> tool_command(const std::string& tool, const std::string& package,
                                      const std::string& states,
                                      const std::vector<std::string>& search,
                                      const std::vector<std::string>& arguments) {
    std::vector<std::string> folders = search;
    std::transform(arguments.begin(), arguments.end(), std::back_inserter(folders), search_folder);
    std::sort(folders.begin(), folders.end());
    folders.erase(std::unique(folders.begin(), folders.end()), folders.end());
    std::vector<std::string> words = {tool, "--package", package, "--states", states};
    for (const std::string& folder : folders) {
        words.insert(words.end(), {"--search", folder});
    }
    return words;
}

std::size_t fitting(const std::vector<std::string>& instruments, std::size_t first,
                    std::size_t room) {
    const auto begin = instruments.begin() + static_cast<std::ptrdiff_t>(first);
    std::size_t used = 0;
    const auto end = std::find_if(begin, instruments.end(), [&](const std::string& instrument) {
        used += size_as_argument(instrument);
        return used > room;
    });
    return std::max<std::size_t>(static_cast<std::size_t>(end - begin), 1);
}

RunEnd run_tool(const std::vector<std::string>& command,
                const std::vector<std::string>& instruments, const RunListener& listener) {
    return Run(command, instruments, listener).run();
}

} // namespace lumo::library
