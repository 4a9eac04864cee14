// The tool as a process whose output this program reads.
#pragma once

#include "base/descriptor.h"
#include "line_splitter.h"

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lumo::library {

/// Gathers what comes through a pipe and hands it on by whole lines.
class LineReader {
public:
    /// Reads from a descriptor that does not block.
    explicit LineReader(Descriptor descriptor) : descriptor_(std::move(descriptor)) {}

    /// The descriptor, borrowed; -1 when the pipe has ended.
    int descriptor() const { return descriptor_.get(); }
    /// Reads what is there, once, and calls `take` with each line that is whole, without its end.
    /// What comes after the last line end is kept for the next time.
    void read_lines(const std::function<void(std::string_view line)>& take);
    /// What came after the last line end.
    const std::string& rest() const { return lines_.rest(); }

private:
    Descriptor descriptor_;
    LineSplitter lines_;
};

/// How many bytes of arguments a new process may be given, those of the environment and some spare
/// ones taken off.
std::size_t room_for_arguments();
/// How many of them one argument takes.
std::size_t size_as_argument(const std::string& argument);

/// A running tool, which is ended and waited for when this goes.
class ToolProcess {
public:
    /// Starts `words[0]` with no standard input. Throws std::system_error when that fails.
    explicit ToolProcess(const std::vector<std::string>& words);
    ~ToolProcess();
    ToolProcess(const ToolProcess&) = delete;
    ToolProcess& operator=(const ToolProcess&) = delete;

    /// Whether more of its output may come.
    bool has_output() const { return out_.descriptor() >= 0 || err_.descriptor() >= 0; }
    /// Waits up to 100 ms for output and hands its lines on, those of standard output and those of
    /// standard error. A last line without an end is handed on from standard error only: on
    /// standard output it is a report line that was cut short.
    void read_output(const std::function<void(std::string_view line)>& take_out,
                     const std::function<void(std::string_view line)>& take_err);
    /// Tells it to end.
    void terminate() const;
    /// Waits for its end; how it ended, such as "status 1" or "signal 9 (Killed)".
    std::string wait();

private:
    pid_t process_ = -1;
    LineReader out_{Descriptor()};
    LineReader err_{Descriptor()};
};

} // namespace lumo::library
