// Children are forked. System calls are refused by a seccomp filter: a BPF program over their
// numbers and arguments.
#include "in_child.h"

#include <grp.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <stddef.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <stdexcept>
#include <string>

namespace lumo::test {
namespace {

constexpr std::uint32_t unprivileged_id = 65534;

sock_filter statement(int code, std::uint32_t operand) {
    return {static_cast<std::uint16_t>(code), 0, 0, operand};
}

sock_filter jump_unless_equal(std::uint32_t operand, std::uint8_t distance) {
    return {BPF_JMP | BPF_JEQ | BPF_K, 0, distance, operand};
}

} // namespace

int in_child(const std::function<int()>& work) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(work());
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child) {
        throw std::runtime_error("fork");
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

bool refuse(const std::vector<RefusedCall>& calls) {
    std::vector<sock_filter> program;
    for (const RefusedCall& call : calls) {
        const auto argument = static_cast<std::uint32_t>(
            offsetof(seccomp_data, args) + sizeof(std::uint64_t) * unsigned(call.argument));
        program.push_back(statement(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)));
        program.push_back(jump_unless_equal(static_cast<std::uint32_t>(call.number), 4));
        program.push_back(statement(BPF_LD | BPF_W | BPF_ABS, argument)); // the low half
        program.push_back(statement(BPF_ALU | BPF_AND | BPF_K, call.mask));
        program.push_back(jump_unless_equal(call.value, 1));
        program.push_back(statement(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | unsigned(call.error)));
    }
    program.push_back(statement(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog filter{static_cast<unsigned short>(program.size()), program.data()};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, 0, &filter) == 0;
}

bool become_nobody() {
    return geteuid() == 0 && setgroups(0, nullptr) == 0 && setgid(unprivileged_id) == 0 &&
           setuid(unprivileged_id) == 0;
}

bool mount_small_volume(const char* folder, int bytes) {
    return unshare(CLONE_NEWNS) == 0 &&
           mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("small", folder, "tmpfs", 0, ("size=" + std::to_string(bytes)).c_str()) == 0;
}

} // namespace lumo::test
