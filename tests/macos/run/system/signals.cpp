// Signals: numbers, handlers and texts.
#include "system/flags.h"
#include "system/system.h"

#include <signal.h>
#include <string.h>
#include <sys/wait.h>

#include <array>
#include <atomic>
#include <cstdint>

namespace lumo::macos {
namespace {

constexpr int count = 32; // one more than the highest number of a Mac

// The numbers that differ: this system's, the Mac's.
constexpr int differing[][2] = {{SIGBUS, 10},  {SIGUSR1, 30}, {SIGUSR2, 31}, {SIGCHLD, 20},
                                {SIGCONT, 19}, {SIGSTOP, 17}, {SIGTSTP, 18}, {SIGURG, 16},
                                {SIGIO, 23},   {SIGSYS, 12}};
// The numbers that are equal.
constexpr int common[] = {SIGHUP,  SIGINT,  SIGQUIT, SIGILL,   SIGTRAP,  SIGABRT, SIGFPE,
                          SIGKILL, SIGSEGV, SIGPIPE, SIGALRM,  SIGTERM,  SIGTTIN, SIGTTOU,
                          SIGXCPU, SIGXFSZ, SIGPROF, SIGWINCH, SIGVTALRM};

/// Translates a number from column `from` of the table to column `to`.
int translate_number(int number, int from, int to) {
    for (const auto& pair : differing) {
        if (pair[from] == number) {
            return pair[to];
        }
    }
    for (const int one : common) {
        if (one == number) {
            return number;
        }
    }
    unknown("signal", number);
}

int mac_signal(int here) {
    return translate_number(here, 0, 1);
}

int signal_here(int mac) {
    return translate_number(mac, 1, 0);
}

using Handler = void(int);

/// struct sigaction of a Mac.
struct MacAction {
    Handler* handler;
    std::uint32_t mask; ///< signal N is bit N - 1
    int flags;
};
static_assert(sizeof(MacAction) == 16);

constexpr FlagPair action_flags[] = {
    {0x1, SA_ONSTACK},   {0x2, SA_RESTART},  {0x4, static_cast<int>(SA_RESETHAND)},
    {0x8, SA_NOCLDSTOP}, {0x10, SA_NODEFER}, {0x20, SA_NOCLDWAIT}};

// The program's handlers, by the Mac's numbers.
std::array<std::atomic<Handler*>, count> handlers;

void call_handler(int here) {
    const int number = mac_signal(here);
    handlers[static_cast<std::size_t>(number)].load()(number);
}

bool is_function(Handler* handler) {
    return handler != SIG_DFL && handler != SIG_IGN;
}

struct sigaction action_here(const MacAction& mac) {
    struct sigaction here {};
    here.sa_handler = is_function(mac.handler) ? call_handler : mac.handler;
    here.sa_flags = translate(mac.flags, action_flags, "flags of sigaction");
    for (int number = 1; number < count; ++number) {
        if (mac.mask >> (number - 1) & 1) {
            sigaddset(&here.sa_mask, signal_here(number));
        }
    }
    return here;
}

/// The Mac's structure for a previous action `here`; `handler` is the program's function if it had
/// one.
MacAction mac_action(const struct sigaction& here, Handler* handler) {
    MacAction mac{here.sa_handler == call_handler ? handler : here.sa_handler, 0, 0};
    for (const FlagPair& pair : action_flags) {
        mac.flags |= here.sa_flags & pair.here ? pair.mac : 0;
    }
    for (const auto& pair : differing) {
        mac.mask |= sigismember(&here.sa_mask, pair[0]) == 1 ? 1u << (pair[1] - 1) : 0;
    }
    for (const int number : common) {
        mac.mask |= sigismember(&here.sa_mask, number) == 1 ? 1u << (number - 1) : 0;
    }
    return mac;
}

int mac_sigaction(int number, const MacAction* action, MacAction* before) {
    const int number_here = signal_here(number);
    std::atomic<Handler*>& handler = handlers[static_cast<std::size_t>(number)];
    Handler* const handler_before = handler;
    struct sigaction wanted {};
    struct sigaction found {};
    if (action) {
        wanted = action_here(*action);
        if (is_function(action->handler)) {
            handler = action->handler;
        }
    }
    const int result = ::sigaction(number_here, action ? &wanted : nullptr, &found);
    if (result == 0 && before) {
        *before = mac_action(found, handler_before);
    }
    return done(result);
}

int mac_kill(int process, int signal) {
    return done(::kill(process, signal == 0 ? 0 : signal_here(signal)));
}

/// A status has the same layout on both systems, with each one's own numbers of signals.
int mac_waitpid(int process, int* status, int options) {
    if ((options & ~(WNOHANG | WUNTRACED)) != 0) { // these two are the same
        unknown("options of waitpid", options);
    }
    int here = 0;
    const int result = ::waitpid(process, &here, options);
    if (result > 0 && WIFSIGNALED(here)) {
        here = (here & ~0x7f) | mac_signal(WTERMSIG(here));
    } else if (result > 0 && WIFSTOPPED(here)) {
        here = W_STOPCODE(mac_signal(WSTOPSIG(here)));
    }
    if (result > 0 && status) {
        *status = here;
    }
    return done(result);
}

/// The text is this system's.
char* mac_strsignal(int number) {
    return ::strsignal(signal_here(number));
}

const Name names[] = {
    row("_kill", mac_kill),
    row("_sigaction", mac_sigaction),
    row("_strsignal", mac_strsignal),
    row("_waitpid", mac_waitpid),
};

} // namespace

std::span<const Name> signal_names() {
    return names;
}

} // namespace lumo::macos
