// All allocations are made before the fork: in the child the heap may be locked by a thread that
// does not exist there.
#include "support/child_process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <utility>

namespace lumo::test {
namespace {

[[noreturn]] void run_child(char* const* argv, int out, int err, const char* folder) {
    dup2(open("/dev/null", O_RDONLY), 0);
    if (out < 0) {
        close(1);
    } else {
        dup2(out, 1);
    }
    if (err >= 0) {
        dup2(err, 2);
    }
    if (*folder != '\0' && chdir(folder) != 0) {
        _exit(127);
    }
    execvp(argv[0], argv);
    _exit(127);
}

void close_end(int& end) {
    if (const int descriptor = std::exchange(end, -1); descriptor >= 0) {
        close(descriptor);
    }
}

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& arguments, int out, int err,
                           const std::filesystem::path& folder) {
    std::vector<char*> argv;
    argv.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    process_ = fork();
    if (process_ < 0) {
        throw std::runtime_error("fork");
    }
    if (process_ == 0) {
        run_child(argv.data(), out, err, folder.c_str());
    }
}

ChildProcess::~ChildProcess() {
    if (process_ > 0) {
        kill(process_, SIGKILL);
        wait();
    }
}

int ChildProcess::wait() {
    int status = 0;
    while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {
    }
    process_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

Pipe::Pipe() {
    int ends[2];
    if (pipe(ends) != 0) {
        throw std::runtime_error("pipe");
    }
    reading_end = ends[0];
    writing_end = ends[1];
    fcntl(reading_end, F_SETFD, FD_CLOEXEC);
    fcntl(writing_end, F_SETFD, FD_CLOEXEC);
}

Pipe::~Pipe() {
    close_reading_end();
    close_writing_end();
}

void Pipe::close_reading_end() {
    close_end(reading_end);
}

void Pipe::close_writing_end() {
    close_end(writing_end);
}

std::string Pipe::read_line() const {
    std::string line;
    char c = 0;
    while (!line.ends_with('\n') && read(reading_end, &c, 1) == 1) {
        line += c;
    }
    return line;
}

} // namespace lumo::test
