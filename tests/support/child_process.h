// A program that runs in parallel with the test.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace lumo::test {

/// Runs `arguments[0]` (a path, or a name on PATH) without standard input. The destructor kills it
/// if it still runs.
class ChildProcess {
public:
    /// `out` becomes its standard output and stays open here; -1 closes its standard output. `err`
    /// becomes its standard error; -1 leaves that unchanged. It runs in `folder` (empty: the
    /// current one). Throws std::runtime_error when no process can be made; when the process cannot
    /// run the program it ends with status 127.
    ChildProcess(const std::vector<std::string>& arguments, int out, int err = -1,
                 const std::filesystem::path& folder = {});
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Waits for its end and returns its exit status, or minus the number of the signal that ended
    /// it.
    int wait();

private:
    pid_t process_;
};

/// Both ends of a pipe. Started programs do not inherit them.
struct Pipe {
    Pipe();
    ~Pipe();
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    void close_reading_end();
    void close_writing_end();
    /// The bytes up to and including the next newline; without one when the pipe ends before it.
    std::string read_line() const;

    int reading_end = -1;
    int writing_end = -1;
};

} // namespace lumo::test
