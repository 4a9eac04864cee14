#include "support/run_process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <stdexcept>

namespace lumo::test {
namespace {

[[noreturn]] void run_child(const std::vector<std::string>& arguments,
                            const std::filesystem::path& folder, int out, int err) {
    const int null = open("/dev/null", O_RDONLY);
    dup2(null, 0);
    dup2(out, 1);
    dup2(err, 2);
    if (!folder.empty() && chdir(folder.c_str()) != 0) {
        _exit(127);
    }
    std::vector<char*> argv;
    argv.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    execvp(argv[0], argv.data());
    _exit(127);
}

void read_all(std::array<pollfd, 2>& pipes, std::array<std::string*, 2> texts) {
    std::array<char, 65536> buffer{};
    while (pipes[0].fd >= 0 || pipes[1].fd >= 0) {
        if (poll(pipes.data(), static_cast<nfds_t>(pipes.size()), -1) < 0 && errno != EINTR) {
            throw std::runtime_error("poll");
        }
        for (std::size_t i = 0; i < pipes.size(); ++i) {
            if (pipes[i].fd < 0 || pipes[i].revents == 0) {
                continue;
            }
            const ssize_t count = read(pipes[i].fd, buffer.data(), buffer.size());
            if (count > 0) {
                texts[i]->append(buffer.data(), static_cast<std::size_t>(count));
            } else {
                close(pipes[i].fd);
                pipes[i].fd = -1;
            }
        }
    }
}

} // namespace

ProcessResult run_process(const std::vector<std::string>& arguments,
                          const std::filesystem::path& folder) {
    int out[2];
    int err[2];
    if (pipe(out) != 0 || pipe(err) != 0) {
        throw std::runtime_error("pipe");
    }
    for (const int end : {out[0], err[0]}) {
        fcntl(end, F_SETFD, FD_CLOEXEC);
    }
    const pid_t child = fork();
    if (child < 0) {
        throw std::runtime_error("fork");
    }
    if (child == 0) {
        run_child(arguments, folder, out[1], err[1]);
    }
    close(out[1]);
    close(err[1]);
    ProcessResult result;
    std::array<pollfd, 2> pipes{pollfd{out[0], POLLIN, 0}, pollfd{err[0], POLLIN, 0}};
    read_all(pipes, {&result.out, &result.err});
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    return result;
}

} // namespace lumo::test
