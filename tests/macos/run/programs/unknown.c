// A C program for a Mac that uses a flag, a request or a function that macos-run does not know, as
// its argument says. "folder" makes a folder; a test causes this to fail. "mutex" locks one twice,
// which waits forever on a Mac.
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

int main(int argc, char** argv) {
    const char* what = argc > 1 ? argv[1] : "";
    if (strcmp(what, "flag") == 0) {
        open("/", O_RDONLY | O_EXLOCK);
    } else if (strcmp(what, "folder") == 0) {
        mkdir("/nowhere/folder", 0700);
    } else if (strcmp(what, "action") == 0) {
        struct sigaction action = {.sa_flags = SA_SIGINFO};
        sigaction(SIGINT, &action, NULL);
    } else if (strcmp(what, "request") == 0) {
        ioctl(0, TIOCSCTTY, 0);
    } else if (strcmp(what, "mutex") == 0) {
        pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
        pthread_mutex_lock(&mutex);
        pthread_mutex_lock(&mutex);
    } else if (strcmp(what, "function") == 0) {
        double loads[3];
        getloadavg(loads, 3);
    }
    return 0;
}
