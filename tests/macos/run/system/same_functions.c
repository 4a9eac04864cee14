// The functions with the same arguments and results on a Mac and on this system. None of them sets
// errno to a number that differs, or no caller reads it. In C, because a function has only one type
// there.
#define _GNU_SOURCE // NOLINT(bugprone-reserved-identifier): the C library asks for this name
#include <arpa/inet.h>
#include <ctype.h>
#include <math.h>
#include <regex.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>
#include <unwind.h>
#include <wchar.h>

struct Same {
    const char* name;
    void* function;
};

extern __int128 __divti3(__int128, __int128); // NOLINT(bugprone-reserved-identifier): libgcc's

#define SAME(name) {"_" #name, (void*)(name)},

// clang-format off
const struct Same lumo_same_functions[] = {
    SAME(memchr) SAME(memcmp) SAME(memcpy) SAME(memmove) SAME(memset) SAME(strcasecmp) SAME(strchr)
    SAME(strcmp) SAME(strdup) SAME(strlen) SAME(strncasecmp) SAME(strncmp) SAME(strrchr)
    SAME(strstr) SAME(wcscmp) SAME(wcslen) SAME(wcsstr) SAME(wcwidth) SAME(wmemchr)
    SAME(wmemcmp)
    SAME(strcpy) SAME(strncpy) SAME(strcat) SAME(strpbrk) SAME(strspn) SAME(strcspn) SAME(memmem)
    {"___bzero", (void*)bzero}, SAME(bzero)
    SAME(malloc) SAME(calloc) SAME(realloc) SAME(free) SAME(aligned_alloc) SAME(posix_memalign)
    SAME(getenv) SAME(setenv) SAME(unsetenv) SAME(abort) SAME(exit) SAME(_exit) SAME(qsort)
    SAME(arc4random) SAME(__divti3)
    SAME(fputc) SAME(fputs) SAME(fputwc) SAME(puts) SAME(putchar)
    SAME(fread) SAME(fgets) SAME(getc) SAME(getwc) SAME(ungetc) SAME(ungetwc) SAME(fileno) SAME(ftell)
    SAME(ftello) SAME(fseek) SAME(fseeko)
    SAME(wcstod) SAME(wcstof) SAME(wcstol) SAME(wcstoll) SAME(wcstoul)
    SAME(wcstoull) SAME(lround) SAME(llround) SAME(nextafter) SAME(fmod) SAME(pow) SAME(round) SAME(sqrt)
    SAME(floor) SAME(ceil)
    SAME(getpid) SAME(geteuid) SAME(getuid) SAME(isatty) SAME(umask) SAME(time) SAME(localtime)
    SAME(localtime_r) SAME(gmtime_r) SAME(strftime) SAME(nanosleep)
    SAME(_Unwind_DeleteException) SAME(_Unwind_GetIP) SAME(_Unwind_GetLanguageSpecificData)
    SAME(_Unwind_GetRegionStart) SAME(_Unwind_RaiseException) SAME(_Unwind_Resume)
    SAME(_Unwind_SetGR) SAME(_Unwind_SetIP)
    {0, 0}};
