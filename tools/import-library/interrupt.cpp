// A signal handler may do very little: it stores the number, which the run checks ten times a
// second.
#include "interrupt.h"

#include <signal.h>

#include <initializer_list>

namespace lumo::library {
namespace {

volatile sig_atomic_t signal_that_came = 0;

void remember(int number) {
    signal_that_came = number;
}

} // namespace

void watch_interrupts() {
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction before {};
        sigaction(number, nullptr, &before);
        if (before.sa_handler != SIG_IGN) {
            struct sigaction action {};
            action.sa_handler = remember;
            action.sa_flags = static_cast<int>(SA_RESETHAND); // unsigned in glibc, int in the field
            sigaction(number, &action, nullptr);
        }
    }
}

int interrupted_by() {
    return signal_that_came;
}

} // namespace lumo::library
