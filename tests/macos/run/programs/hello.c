// A C program for a Mac: variables of libSystem, arguments, structures, error numbers.
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>

int main(int argc, char** argv, char** environment, char** apple) {
    struct stat status;
    printf("hello from %s, %d arguments, %s\n", strrchr(argv[0], '/') + 1, argc,
           environment && apple[0] ? "environment and apple" : "nothing");
    printf("stat: %d, size %s\n", stat(argv[0], &status), status.st_size > 4096 ? "good" : "bad");
    printf("mode %o\n", status.st_mode & S_IFMT);
    printf("open: %d errno %d %s\n", open("/nowhere/a", O_RDONLY | O_CLOEXEC), errno,
           strerror(errno));
    char longer[400];
    memset(longer, 'x', sizeof longer - 1);
    longer[399] = 0;
    printf("long: %d, ENAMETOOLONG is %s\n", open(longer, O_RDONLY),
           errno == ENAMETOOLONG && errno == 63 ? "63" : "wrong");
    return 7;
}
