// A program that runs beside the test.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace lumo::test {

/// Runs `arguments[0]` (a path, or a name on PATH) without standard input; killed when it still
/// runs at the end of the test.
class ChildProcess {
public:
    /// `out` becomes its standard output and stays open here; -1 closes its standard output. So
    /// does `err`, unless -1, become its standard error. It runs in `folder` (empty: the current
    /// one). Throws std::runtime_error when there can be no process; one that cannot do what is
    /// asked ends with the status 127.
    ChildProcess(const std::vector<std::string>& arguments, int out, int err = -1,
                 const std::filesystem::path& folder = {});
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Waits for its end: its exit status, or minus the number of the signal that ended it.
    int wait();

private:
    pid_t process_;
};

/// Both ends of a pipe, which programs that are run do not inherit.
struct Pipe {
    Pipe();
    ~Pipe();
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    void close_reading_end();
    void close_writing_end();
    /// What comes up to and with the next newline; what came before when the pipe ends.
    std::string read_line() const;

    int reading_end = -1;
    int writing_end = -1;
};

} // namespace lumo::test
