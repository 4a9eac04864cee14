// Error numbers, and the functions that end a process.
#include "loader/image.h"
#include "system/system.h"

#include <string.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace lumo::macos {
namespace {

// The error numbers that differ: this system's, the Mac's. From 1 to 34 all but EAGAIN are equal.
constexpr int differing[][2] = {
    {EAGAIN, 35},       {EDEADLK, 11},         {ENAMETOOLONG, 63},    {ENOLCK, 77},
    {ENOSYS, 78},       {ENOTEMPTY, 66},       {ELOOP, 62},           {ENOMSG, 91},
    {EIDRM, 90},        {ENODATA, 93},         {ETIME, 101},          {EPROTO, 100},
    {EBADMSG, 94},      {EOVERFLOW, 84},       {EILSEQ, 92},          {EUSERS, 68},
    {ENOTSOCK, 38},     {EDESTADDRREQ, 39},    {EMSGSIZE, 40},        {EPROTOTYPE, 41},
    {ENOPROTOOPT, 42},  {EPROTONOSUPPORT, 43}, {EOPNOTSUPP, 45},      {EAFNOSUPPORT, 47},
    {EADDRINUSE, 48},   {EADDRNOTAVAIL, 49},   {ENETDOWN, 50},        {ENETUNREACH, 51},
    {ECONNABORTED, 53}, {ECONNRESET, 54},      {ENOBUFS, 55},         {EISCONN, 56},
    {ENOTCONN, 57},     {ETIMEDOUT, 60},       {ECONNREFUSED, 61},    {EHOSTUNREACH, 65},
    {EALREADY, 37},     {EINPROGRESS, 36},     {ESTALE, 70},          {EDQUOT, 69},
    {ECANCELED, 89},    {EOWNERDEAD, 105},     {ENOTRECOVERABLE, 104}};
constexpr int last_common = ERANGE;

} // namespace

int mac_error(int error) {
    for (const auto& pair : differing) {
        if (pair[0] == error) {
            return pair[1];
        }
    }
    if (error > last_common) {
        unknown("error number", error);
    }
    return error;
}

int linux_error(int error) {
    for (const auto& pair : differing) {
        if (pair[1] == error) {
            return pair[0];
        }
    }
    return error == 102 ? EOPNOTSUPP : error;
}

int& mac_errno() {
    thread_local int number = 0;
    return number;
}

void unknown(const char* what, long value) {
    give_up(std::string("unknown here: ") + what + " " + std::to_string(value));
}

namespace {

int* mac_error_place() {
    return &mac_errno();
}

char* mac_strerror(int error) {
    thread_local std::array<char, 128> text;
    const int here = linux_error(error);
    if (error >= 0 && error <= 106 && strerrordesc_np(here)) {
        std::snprintf(text.data(), text.size(), "%s", strerrordesc_np(here));
    } else {
        std::snprintf(text.data(), text.size(), "Unknown error: %d", error);
    }
    return text.data();
}

int mac_strerror_r(int error, char* text, std::size_t size) {
    std::snprintf(text, size, "%s", mac_strerror(error));
    return error >= 0 && error <= 106 ? 0 : 22;
}

[[noreturn]] void mac_assert_rtn(const char* function, const char* file, int line,
                                 const char* what) {
    std::fprintf(stderr, "Assertion failed: (%s), function %s, file %s, line %d.\n", what, function,
                 file, line);
    std::abort();
}

[[noreturn]] void mac_stack_chk_fail() {
    give_up("stack smashed");
}

const Name names[] = {
    row("___error", mac_error_place),
    row("_strerror", mac_strerror),
    row("_strerror_r", mac_strerror_r),
    row("___assert_rtn", mac_assert_rtn),
    row("___stack_chk_fail", mac_stack_chk_fail),
};

} // namespace

std::span<const Name> error_names() {
    return names;
}

} // namespace lumo::macos
