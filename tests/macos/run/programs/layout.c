// Checks the Mac's constants and structures as macos-run defines them against the Mac's own
// headers. This file is compiled for a Mac and never run.
#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <locale.h>
#include <poll.h>
#include <pthread.h>
#include <regex.h>
#include <runetype.h>
#include <signal.h>
#include <stddef.h>
#include <sys/attr.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>
#include <wchar.h>

// clang-format off
#define IS(expression, value) _Static_assert((expression) == (value), #expression);
#define AT(type, field, offset) IS(offsetof(type, field), offset)

IS(sizeof(struct stat), 144) AT(struct stat, st_mode, 4) AT(struct stat, st_nlink, 6)
AT(struct stat, st_ino, 8) AT(struct stat, st_uid, 16) AT(struct stat, st_rdev, 24)
AT(struct stat, st_atimespec, 32) AT(struct stat, st_mtimespec, 48)
AT(struct stat, st_birthtimespec, 80) AT(struct stat, st_size, 96) AT(struct stat, st_blocks, 104)
AT(struct stat, st_blksize, 112)
IS(sizeof(struct dirent), 1048) AT(struct dirent, d_reclen, 16) AT(struct dirent, d_namlen, 18)
AT(struct dirent, d_type, 20) AT(struct dirent, d_name, 21) IS(DT_REG, 8) IS(DT_DIR, 4)
IS(DT_LNK, 10) IS(DT_UNKNOWN, 0)
IS(sizeof(struct statfs), 2168) AT(struct statfs, f_blocks, 8) AT(struct statfs, f_ffree, 40)
IS(sizeof(struct statvfs), 64) AT(struct statvfs, f_blocks, 16) AT(struct statvfs, f_namemax, 56)
IS(sizeof(struct accessx_descriptor), 16) AT(struct accessx_descriptor, ad_flags, 4)
IS(sizeof(struct attrlist), 24) IS(FSOPT_NOFOLLOW, 1)
IS(sizeof(struct pollfd), 8) IS(POLLIN, 1) IS(POLLOUT, 4) IS(POLLERR, 8) IS(POLLHUP, 16)
IS(sizeof(pthread_mutex_t), 64) IS(sizeof(pthread_cond_t), 48) IS(sizeof(pthread_once_t), 16)
IS(offsetof(pthread_mutex_t, __opaque), 8) IS(PTHREAD_MUTEX_RECURSIVE, 2)
IS(sizeof(pthread_mutexattr_t), 16) IS(sizeof(mbstate_t), 128)
IS(sizeof(regex_t), 32) AT(regex_t, re_g, 24) IS(sizeof(regmatch_t), 16) IS(REG_EXTENDED, 1)
IS(REG_ICASE, 2) IS(REG_NOSUB, 4) IS(REG_NEWLINE, 8)
IS(offsetof(_RuneLocale, __runetype), 60) IS(offsetof(_RuneLocale, __maplower), 60 + 1024)
IS(offsetof(struct lconv, int_frac_digits), 80) AT(struct lconv, int_n_cs_precedes, 89)
AT(struct lconv, int_p_sep_by_space, 90)
IS(LC_ALL, 0) IS(LC_COLLATE, 1) IS(LC_CTYPE, 2) IS(LC_MONETARY, 3) IS(LC_NUMERIC, 4) IS(LC_TIME, 5)
IS(LC_MESSAGES, 6)
IS(sizeof(struct tm), 56) AT(struct tm, tm_isdst, 32) AT(struct tm, tm_gmtoff, 40)
AT(struct tm, tm_zone, 48)
IS(sizeof(struct winsize), 8) AT(struct winsize, ws_col, 2) IS(TIOCGWINSZ, 0x40087468)
IS(FIONREAD, 0x4004667f)
IS(sizeof(struct sigaction), 16) AT(struct sigaction, sa_mask, 8) AT(struct sigaction, sa_flags, 12)
IS(SA_ONSTACK, 1) IS(SA_RESTART, 2) IS(SA_RESETHAND, 4) IS(SA_NOCLDSTOP, 8) IS(SA_NODEFER, 0x10)
IS(SA_NOCLDWAIT, 0x20) IS((long)SIG_DFL, 0) IS((long)SIG_IGN, 1)
IS(SIGHUP, 1) IS(SIGINT, 2) IS(SIGQUIT, 3) IS(SIGILL, 4) IS(SIGTRAP, 5) IS(SIGABRT, 6) IS(SIGFPE, 8)
IS(SIGKILL, 9) IS(SIGBUS, 10) IS(SIGSEGV, 11) IS(SIGSYS, 12) IS(SIGPIPE, 13) IS(SIGALRM, 14)
IS(SIGTERM, 15) IS(SIGURG, 16) IS(SIGSTOP, 17) IS(SIGTSTP, 18) IS(SIGCONT, 19) IS(SIGCHLD, 20)
IS(SIGTTIN, 21) IS(SIGTTOU, 22) IS(SIGIO, 23) IS(SIGXCPU, 24) IS(SIGXFSZ, 25) IS(SIGVTALRM, 26)
IS(SIGPROF, 27) IS(SIGWINCH, 28) IS(SIGUSR1, 30) IS(SIGUSR2, 31) IS(NSIG, 32)
IS(WNOHANG, 1) IS(WUNTRACED, 2) IS(W_EXITCODE(3, 9), 0x309) IS(W_STOPCODE(17), 0x117f)

IS(O_WRONLY, 1) IS(O_RDWR, 2) IS(O_NONBLOCK, 4) IS(O_APPEND, 8) IS(O_SYNC, 0x80)
IS(O_NOFOLLOW, 0x100) IS(O_CREAT, 0x200) IS(O_TRUNC, 0x400) IS(O_EXCL, 0x800) IS(O_EVTONLY, 0x8000)
IS(O_NOCTTY, 0x20000) IS(O_DIRECTORY, 0x100000) IS(O_SYMLINK, 0x200000) IS(O_DSYNC, 0x400000)
IS(O_CLOEXEC, 0x1000000) IS(AT_FDCWD, -2) IS(AT_EACCESS, 0x10) IS(AT_SYMLINK_NOFOLLOW, 0x20)
IS(AT_SYMLINK_FOLLOW, 0x40) IS(AT_REMOVEDIR, 0x80) IS(F_GETFL, 3) IS(F_SETFL, 4)
IS(F_DUPFD_CLOEXEC, 67) IS(LOCK_EX, 2) IS(LOCK_UN, 8) IS(R_OK, 4) IS(UTIME_NOW, -1)
IS(UTIME_OMIT, -2) IS(_PC_LINK_MAX, 1) IS(_PC_NAME_MAX, 4) IS(_PC_VDISABLE, 9)
IS(_SC_ARG_MAX, 1) IS(_SC_PAGESIZE, 29) IS(_SC_NPROCESSORS_ONLN, 58) IS(CLOCK_REALTIME, 0) IS(CLOCK_MONOTONIC_RAW, 4)
IS(CLOCK_MONOTONIC, 6) IS(CLOCK_UPTIME_RAW, 8) IS(CLOCK_PROCESS_CPUTIME_ID, 12)

IS(ENOENT, 2) IS(EDEADLK, 11) IS(ERANGE, 34) IS(EAGAIN, 35) IS(EINPROGRESS, 36) IS(EALREADY, 37)
IS(ENOTSOCK, 38) IS(ENOTSUP, 45) IS(EADDRINUSE, 48) IS(ECONNRESET, 54) IS(ENOBUFS, 55)
IS(ETIMEDOUT, 60) IS(ECONNREFUSED, 61) IS(ELOOP, 62) IS(ENAMETOOLONG, 63) IS(ENOTEMPTY, 66)
IS(EUSERS, 68) IS(EDQUOT, 69) IS(ESTALE, 70) IS(ENOLCK, 77) IS(ENOSYS, 78) IS(EOVERFLOW, 84)
IS(ECANCELED, 89) IS(EIDRM, 90) IS(ENOMSG, 91) IS(EILSEQ, 92) IS(ENOATTR, 93) IS(EBADMSG, 94)
IS(EPROTO, 100) IS(ETIME, 101) IS(EOPNOTSUPP, 102) IS(ENOTRECOVERABLE, 104) IS(EOWNERDEAD, 105)
