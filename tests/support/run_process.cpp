// Both outputs are read as they arrive, so that a program that fills one pipe is not blocked.
#include "support/run_process.h"

#include "support/child_process.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <stdexcept>

namespace lumo::test {
namespace {

/// Reads both pipes to their ends.
void read_all(const Pipe& out, const Pipe& err, ProcessResult& result) {
    std::array<pollfd, 2> pipes{pollfd{out.reading_end, POLLIN, 0},
                                pollfd{err.reading_end, POLLIN, 0}};
    const std::array<std::string*, 2> texts{&result.out, &result.err};
    std::array<char, 65536> buffer{};
    while (pipes[0].fd >= 0 || pipes[1].fd >= 0) {
        if (poll(pipes.data(), static_cast<nfds_t>(pipes.size()), -1) < 0) {
            if (errno != EINTR) {
                throw std::runtime_error("poll");
            }
            continue;
        }
        for (std::size_t i = 0; i < pipes.size(); ++i) {
            if (pipes[i].fd < 0 || pipes[i].revents == 0) {
                continue;
            }
            const ssize_t count = read(pipes[i].fd, buffer.data(), buffer.size());
            if (count > 0) {
                texts[i]->append(buffer.data(), static_cast<std::size_t>(count));
            } else {
                pipes[i].fd = -1; // poll ignores it
            }
        }
    }
}

} // namespace

ProcessResult run_process(const std::vector<std::string>& arguments,
                          const std::filesystem::path& folder) {
    Pipe out;
    Pipe err;
    ChildProcess child(arguments, out.writing_end, err.writing_end, folder);
    out.close_writing_end();
    err.close_writing_end();
    ProcessResult result;
    read_all(out, err, result);
    result.status = child.wait();
    return result;
}

} // namespace lumo::test
