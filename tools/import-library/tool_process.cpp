// fork and execv, with a pipe for each of the outputs, and a third one that returns the error of a
// failed execv; a successful execv closes it.
#include "tool_process.h"

#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <signal.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <utility>

extern char** environ; // not every system declares it

namespace lumo::library {
namespace {

constexpr int max_wait_ms = 100;
constexpr std::size_t spare_room = 4096;                  // POSIX recommends 2048
constexpr std::size_t usual_limit = std::size_t{2} << 20; // for systems that report no limit

/// Both ends of a pipe; execv closes them.
struct Pipe {
    Descriptor reading;
    Descriptor writing;

    Pipe() {
        std::array<int, 2> ends{};
        if (pipe(ends.data()) != 0) {
            throw std::system_error(errno, std::generic_category());
        }
        reading = Descriptor(ends[0]);
        writing = Descriptor(ends[1]);
        fcntl(ends[0], F_SETFD, FD_CLOEXEC);
        fcntl(ends[1], F_SETFD, FD_CLOEXEC);
    }
};

/// Called in the new process: executes the tool, or writes errno to `failure` and ends.
[[noreturn]] void become(char* const* words, int out, int err, int failure) {
    const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
    dup2(nothing, STDIN_FILENO);
    dup2(out, STDOUT_FILENO);
    dup2(err, STDERR_FILENO);
    execv(words[0], words);
    const int reason = errno;
    [[maybe_unused]] const ssize_t written = write(failure, &reason, sizeof reason);
    _exit(EXIT_FAILURE); // the status is not used
}

/// The errno from the new process; 0 when it executes the tool.
int read_failure(Pipe& failure) {
    failure.writing = Descriptor();
    int reason = 0; // a pipe passes the whole number or nothing
    uninterrupted([&] { return read(failure.reading.get(), &reason, sizeof reason); });
    return reason;
}

int wait_for(pid_t process) {
    int status = 0;
    uninterrupted([&] { return waitpid(process, &status, 0); });
    return status;
}

} // namespace

void LineReader::read_lines(const std::function<void(std::string_view line)>& take) {
    const ssize_t count =
        uninterrupted([&] { return read(descriptor_.get(), buffer_.data(), buffer_.size()); });
    if (count <= 0) {
        descriptor_ = Descriptor();
        return;
    }
    lines_.add({buffer_.data(), static_cast<std::size_t>(count)}, take);
}

std::size_t room_for_arguments() {
    // Without a limit sysconf returns -1, which becomes the largest number.
    const std::size_t room = std::min(static_cast<std::size_t>(sysconf(_SC_ARG_MAX)), usual_limit);
    std::size_t taken = spare_room;
    for (char** entry = environ; *entry; ++entry) {
        taken += size_as_argument(*entry);
    }
    return room - std::min(room, taken);
}

std::size_t size_as_argument(const std::string& argument) {
    return argument.size() + 1 + sizeof(char*);
}

ToolProcess::ToolProcess(const std::vector<std::string>& words) {
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (const std::string& word : words) {
        pointers.push_back(const_cast<char*>(word.c_str())); // execv does not change it
    }
    pointers.push_back(nullptr);
    Pipe out;
    Pipe err;
    Pipe failure;
    const pid_t process = fork();
    if (process < 0) {
        throw std::system_error(errno, std::generic_category());
    }
    if (process == 0) {
        become(pointers.data(), out.writing.get(), err.writing.get(), failure.writing.get());
    }
    if (const int reason = read_failure(failure); reason != 0) {
        wait_for(process);
        throw std::system_error(reason, std::generic_category());
    }
    process_ = process;
    out_ = LineReader(std::move(out.reading));
    err_ = LineReader(std::move(err.reading));
}

ToolProcess::~ToolProcess() {
    if (process_) {
        terminate();
        wait_for(*process_);
    }
}

void ToolProcess::read_output(const std::function<void(std::string_view line)>& take_out,
                              const std::function<void(std::string_view line)>& take_err) {
    std::array<pollfd, 2> pipes = {pollfd{out_.descriptor(), POLLIN, {}},
                                   pollfd{err_.descriptor(), POLLIN, {}}};
    poll(pipes.data(), pipes.size(), max_wait_ms); // when it fails, revents stay 0
    if (pipes[0].revents != 0) {
        out_.read_lines(take_out);
    }
    if (pipes[1].revents != 0) {
        err_.read_lines(take_err);
        if (!err_.is_open() && !err_.rest().empty()) {
            take_err(err_.rest());
        }
    }
}

void ToolProcess::terminate() const {
    kill(*process_, SIGTERM);
}

std::string ToolProcess::wait() {
    const int status = wait_for(*std::exchange(process_, std::nullopt));
    if (WIFSIGNALED(status)) {
        const int signal = WTERMSIG(status);
        return "signal " + std::to_string(signal) + " (" + strsignal(signal) + ")";
    }
    return "status " + std::to_string(WEXITSTATUS(status));
}

} // namespace lumo::library
