// Runs the tool as a child process and reads its output.
#pragma once

#include "base/descriptor.h"
#include "line_splitter.h"

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lumo::library {

/// Reads complete lines from a pipe.
class LineReader {
public:
    /// Reads from a descriptor that does not block.
    explicit LineReader(Descriptor descriptor) : descriptor_(std::move(descriptor)) {}

    /// The descriptor, borrowed; -1 when the pipe has ended.
    int descriptor() const { return descriptor_.get(); }
    /// False when the pipe has ended.
    bool is_open() const { return static_cast<bool>(descriptor_); }
    /// Makes one read and calls `take` with each complete line, without its line end. An incomplete
    /// line is kept for the next call.
    void read_lines(const std::function<void(std::string_view line)>& take);
    /// What came after the last line end.
    const std::string& rest() const { return lines_.rest(); }

private:
    Descriptor descriptor_;
    std::vector<char> buffer_ = std::vector<char>(std::size_t{1} << 16);
    LineSplitter lines_;
};

/// The number of bytes available for the arguments of a new process, without those for the
/// environment and a reserve.
std::size_t room_for_arguments();
/// The number of bytes that one argument takes.
std::size_t size_as_argument(const std::string& argument);

/// A running tool. The destructor ends it and waits for it.
class ToolProcess {
public:
    /// Starts `words[0]` without standard input. Throws std::system_error on failure.
    explicit ToolProcess(const std::vector<std::string>& words);
    ~ToolProcess();
    ToolProcess(const ToolProcess&) = delete;
    ToolProcess& operator=(const ToolProcess&) = delete;

    /// Whether more of its output may come.
    bool has_output() const { return out_.is_open() || err_.is_open(); }
    /// Waits up to 100 ms for output and passes its lines on, separately for standard output and
    /// standard error. A last line without an end is handed on from standard error only: on
    /// standard output it is a report line that was cut short.
    void read_output(const std::function<void(std::string_view line)>& take_out,
                     const std::function<void(std::string_view line)>& take_err);
    /// Asks it to end (SIGTERM). Not to be called after wait.
    void terminate() const;
    /// Waits for its end, once. Returns how it ended, such as "status 1" or "signal 9 (Killed)".
    std::string wait();

private:
    std::optional<pid_t> process_; // none after wait
    LineReader out_{Descriptor()};
    LineReader err_{Descriptor()};
};

} // namespace lumo::library
