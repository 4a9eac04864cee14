// A C program for a Mac. It tests signals, exit statuses and terminals, which have different
// numbers and structures on the two systems, and prints the results for programs_test.py.
#include <locale.h>
#include <mach-o/dyld.h>
#include <signal.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h> // MB_CUR_MAX
#include <string.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>
#include <wchar.h>

static volatile sig_atomic_t caught;

static void remember(int number) {
    caught = number;
}

// Prints the status of a child that a signal ends.
static void end_by(int number) {
    const pid_t child = fork();
    if (child == 0) {
        kill(getpid(), number);
        _exit(1);
    }
    int status = 0;
    const pid_t ended = waitpid(child, &status, 0);
    printf("child: %d, by signal %d\n", ended == child, WIFSIGNALED(status) ? WTERMSIG(status) : 0);
}

// Prints the statuses of a child that stops and continues, and of one that exits.
static void stop_and_go_on(void) {
    const pid_t child = fork();
    if (child == 0) {
        kill(getpid(), SIGSTOP);
        _exit(5);
    }
    int status = 0;
    waitpid(child, &status, WUNTRACED);
    printf("stopped: %d, by signal %d\n", WIFSTOPPED(status), WSTOPSIG(status));
    kill(child, SIGCONT);
    waitpid(child, &status, 0);
    printf("exited: %d, status %d\n", WIFEXITED(status), WEXITSTATUS(status));
}

static void catch_signals(void) {
    const int numbers[] = {SIGINT, SIGUSR1, SIGCHLD};
    for (size_t i = 0; i < sizeof numbers / sizeof *numbers; ++i) {
        struct sigaction action = {.sa_flags = SA_RESETHAND | SA_RESTART}, before, after, last;
        action.sa_handler = remember;
        sigaddset(&action.sa_mask, SIGUSR2);
        sigaction(numbers[i], &action, &before);
        sigaction(numbers[i], NULL, &after);
        kill(getpid(), numbers[i]);
        sigaction(numbers[i], NULL, &last);
        printf("caught %d: default before %d, handler %d, flags %x, mask %x, default after %d\n",
               caught, before.sa_handler == SIG_DFL, after.sa_handler == remember,
               (unsigned)after.sa_flags, after.sa_mask, last.sa_handler == SIG_DFL);
    }
    printf("%s, no signal: %d\n", strsignal(SIGUSR1), kill(getpid(), 0));
}

static void ask_terminal(void) {
    struct winsize size = {0};
    const int result = ioctl(STDERR_FILENO, TIOCGWINSZ, &size);
    printf("terminal: %d, %d, %d columns\n", isatty(STDERR_FILENO), result, size.ws_col);
    printf("widths: %d, %d, %d, %d\n", (int)MB_CUR_MAX, wcwidth(0x5f26), wcwidth(0x301),
           wcwidth(7));
}

int main(int argc, char** argv) {
    (void)argc;
    setlocale(LC_CTYPE, "");
    char path[4096];
    uint32_t size = 1;
    const int is_too_small = _NSGetExecutablePath(path, &size) == -1;
    printf("path: %d, %d, %d\n", is_too_small, _NSGetExecutablePath(path, &size),
           *path == '/' && strcmp(strrchr(path, '/'), strrchr(argv[0], '/')) == 0 &&
               size == strlen(path) + 1);
    end_by(SIGBUS);
    end_by(SIGKILL);
    stop_and_go_on();
    catch_signals();
    ask_terminal();
    const time_t day = 86400;
    char text[20];
    strftime(text, sizeof text, "%Y-%m-%d %H:%M", localtime(&day));
    printf("%s, %d\n", text, sysconf(_SC_ARG_MAX) > 4096);
    return 0;
}
