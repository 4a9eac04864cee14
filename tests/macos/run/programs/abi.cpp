// A C++ program for a Mac. It tests the differences in calling conventions, most of them on arm64:
// variadic arguments, long double, results narrower than an int, the registers that the first use
// of a thread-local variable preserves. Prints "all passed"; the exit status is the number of
// failures.
#include <CoreFoundation/CoreFoundation.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <filesystem>
#include <iostream>
#include <locale>
#include <sstream>
#include <string>
#include <thread>

#define CHECK(what)                                                                                \
    do {                                                                                           \
        if (!(what)) {                                                                             \
            std::printf("FAILED line %d: %s\n", __LINE__, #what);                                  \
            ++failures;                                                                            \
        }                                                                                          \
    } while (false)

int failures = 0;

std::string printed(const char* format, ...) {
    char text[400];
    va_list list, again;
    va_start(list, format);
    va_copy(again, list);
    const int size = vsnprintf(text, sizeof text, format, list);
    std::string twice(text, static_cast<std::size_t>(size));
    vsnprintf(text, sizeof text, format, again);
    va_end(again);
    va_end(list);
    return twice == text ? twice : "not the same twice";
}

// On arm64 a narrow result is extended to an int. These declarations of the same functions return
// the whole register.
#if defined(__arm64__)
#define WHOLE unsigned
#else
#define WHOLE Boolean
#endif
extern "C" {
WHOLE whole_equal(CFTypeRef, CFTypeRef) __asm("_CFEqual");
WHOLE whole_value(CFBooleanRef) __asm("_CFBooleanGetValue");
WHOLE whole_text(CFStringRef, char*, CFIndex, CFStringEncoding) __asm("_CFStringGetCString");
WHOLE whole_number(CFNumberRef, CFIndex, void*) __asm("_CFNumberGetValue");
WHOLE whole_float(CFNumberRef) __asm("_CFNumberIsFloatType");
}

extern "C" {
thread_local std::uint64_t seven = 7;
}

/// Whether the first use of a thread-local variable in a thread preserves the registers.
bool keeps_registers() {
#if defined(__arm64__)
    struct {
        std::uint64_t general[16];
        unsigned char vector[32][16];
    } before, after;
    auto* bytes = reinterpret_cast<unsigned char*>(&before);
    for (std::size_t i = 0; i < sizeof before; ++i) {
        bytes[i] = static_cast<unsigned char>(i * 37 + 11);
    }
    after = {};
    std::uint64_t* address = nullptr;
    // clang-format off
#define REGISTERS(op, at)                                                                          \
    op "x1, x2, [" at "]\n"             op "x3, x4, [" at ", #16]\n"                                \
    op "x5, x6, [" at ", #32]\n"        op "x7, x8, [" at ", #48]\n"                                \
    op "x9, x10, [" at ", #64]\n"       op "x11, x12, [" at ", #80]\n"                              \
    op "x13, x14, [" at ", #96]\n"                                                                 \
    op "q0, q1, [" at ", #128]\n"       op "q2, q3, [" at ", #160]\n"                               \
    op "q4, q5, [" at ", #192]\n"       op "q6, q7, [" at ", #224]\n"                               \
    op "q8, q9, [" at ", #256]\n"       op "q10, q11, [" at ", #288]\n"                             \
    op "q12, q13, [" at ", #320]\n"     op "q14, q15, [" at ", #352]\n"                             \
    op "q16, q17, [" at ", #384]\n"     op "q18, q19, [" at ", #416]\n"                             \
    op "q20, q21, [" at ", #448]\n"     op "q22, q23, [" at ", #480]\n"                             \
    op "q24, q25, [" at ", #512]\n"     op "q26, q27, [" at ", #544]\n"                             \
    op "q28, q29, [" at ", #576]\n"     op "q30, q31, [" at ", #608]\n"
    __asm volatile(
        "adrp x0, _seven@TLVPPAGE\n ldr x0, [x0, _seven@TLVPPAGEOFF]\n"
        REGISTERS("ldp ", "%[before]")
        "ldr x16, [x0]\n blr x16\n"
        REGISTERS("stp ", "%[after]")
        "mov %[address], x0\n"
        : [address] "=&r"(address)
        : [before] "r"(&before), [after] "r"(&after)
        : "memory", "cc", "x0", "x1", "x2", "x3", "x4", "x5", "x6", "x7", "x8", "x9", "x10",
          "x11", "x12", "x13", "x14", "x15", "x16", "x17", "lr", "v0", "v1", "v2", "v3", "v4",
          "v5", "v6", "v7", "v8", "v9", "v10", "v11", "v12", "v13", "v14", "v15", "v16", "v17",
          "v18", "v19", "v20", "v21", "v22", "v23", "v24", "v25", "v26", "v27", "v28", "v29",
          "v30", "v31");
    // clang-format on
    return *address == 7 && std::memcmp(before.general, after.general, 14 * 8) == 0 &&
           std::memcmp(before.vector, after.vector, sizeof before.vector) == 0;
#else
    return seven == 7;
#endif
}

/// Fills the integer and floating-point registers that functions preserve, and throws.
[[gnu::noinline]] double fills_and_throws(double x, long n) {
    double a = x, b = x * 2, c = x * 3, d = x * 4, e = x * 5, f = x * 6, g = x * 7, h = x * 8;
    long i = n, j = n * 2, k = n * 3, l = n * 4, m = n * 5;
    for (int round = 0; round < 3; ++round) {
        std::snprintf(nullptr, 0, "%d", round);
        a += b, b += c, c += d, d += e, e += f, f += g, g += h, h += a;
        i += j, j += k, k += l, l += m, m += i;
    }
    if (n != 0) {
        throw i + j + k + l + m;
    }
    return a + b + c + d + e + f + g + h + static_cast<double>(i + j + k + l + m);
}

/// Whether a function that catches the exception has its registers restored.
[[gnu::noinline]] bool keeps_values(double x, long n) {
    double a = x + 1, b = x + 2, c = x + 3, d = x + 4, e = x + 5, f = x + 6;
    long i = n + 1, j = n + 2, k = n + 3;
    long caught = 0;
    for (int round = 0; round < 3; ++round) {
        try {
            fills_and_throws(a + round, i);
        } catch (long) {
            ++caught;
        }
        a += 1, b += 2, c += 3, d += 4, e += 5, f += 6, i += 1, j += 2, k += 3;
    }
    return caught == 3 && a == x + 4 && b == x + 8 && c == x + 12 && d == x + 16 && e == x + 20 &&
           f == x + 24 && i == n + 4 && j == n + 8 && k == n + 12;
}

int main() {
    CHECK(keeps_values(0.5, 70));
    const std::string text = "text that is long enough to be on the heap";
    CHECK(printed("%d %s %.2f %c %lld %p %u %hhd %x %5d|%-5d|%05.1f", 1, text.c_str(), 2.5, 'c',
                  1LL << 40, static_cast<void*>(nullptr), 4000000000u, -3, 255, 12, 34, 5.25) ==
          "1 " + text + " 2.50 c 1099511627776 (nil) 4000000000 -3 ff    12|34   |005.2");
    CHECK(printed("%*d %.*f %Lf %Lg %% %.3Lf", 4, 7, 1, 0.25, 1.5L, 2.5L, -8.0625L) ==
          "   7 0.2 1.500000 2.5 % -8.062");
    char room[100];
    CHECK(std::snprintf(room, sizeof room, "%d %d %d %d %d %d %d %d %d %g %g", 1, 2, 3, 4, 5, 6, 7,
                        8, 9, 0.5, 1e100) == 28);
    CHECK(std::string(room) == "1 2 3 4 5 6 7 8 9 0.5 1e+100");
    wchar_t wide[100];
    CHECK(std::swprintf(wide, 100, L"%d %ls %Lf", 5, L"wide", 0.5L) == 15);
    CHECK(std::wstring(wide) == L"5 wide 0.500000");
    int i = 0;
    double d = 0;
    long double l = 0;
    CHECK(std::sscanf("12 3.5 4.25 word", "%d %lf %Lf %99s", &i, &d, &l, room) == 4);
    CHECK(i == 12 && d == 3.5 && l == 4.25 && std::string(room) == "word");
    CHECK(std::to_string(1.5L) == "1.500000" && std::stold("2.75") == 2.75L);
    CHECK(std::to_wstring(0.5) == L"0.500000" && std::strtold("-1.5", nullptr) == -1.5L);
    std::ostringstream out;
    out << 0.1L << ' ' << static_cast<void*>(&i) << ' ' << -5L << ' ' << 1.25f;
    CHECK(out.str().starts_with("0.1 0x") && out.str().ends_with(" -5 1.25"));
    std::istringstream in("6.5 -7");
    in >> l >> i;
    CHECK(l == 6.5L && i == -7);
    const auto& money = std::use_facet<std::moneypunct<char>>(std::locale::classic());
    CHECK(money.frac_digits() == 0);

    const std::string path = std::filesystem::temp_directory_path() / "macos-run-abi";
    unlink(path.c_str());
    umask(0);
    const int file = open(path.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0642);
    struct stat status {};
    CHECK(fstat(file, &status) == 0 && (status.st_mode & 07777) == 0642);
    CHECK(fcntl(file, F_GETFD) == FD_CLOEXEC && fcntl(file, F_SETFD, 0) == 0);
    const int other = fcntl(file, F_DUPFD_CLOEXEC, 100);
    CHECK(other >= 100 && fcntl(file, F_GETFD) == 0 && fcntl(other, F_GETFD) == FD_CLOEXEC);
    unlink(path.c_str());

    const CFStringRef a = CFStringCreateWithCString(nullptr, "a", kCFStringEncodingUTF8),
                      b = CFStringCreateWithCString(nullptr, "b", kCFStringEncodingUTF8);
    const double half = 0.5;
    const CFNumberRef number = CFNumberCreate(nullptr, kCFNumberDoubleType, &half);
    CHECK(whole_equal(a, a) == 1 && whole_equal(a, b) == 0 && whole_value(kCFBooleanTrue) == 1 &&
          whole_value(kCFBooleanFalse) == 0);
    CHECK(whole_text(a, room, 1, kCFStringEncodingUTF8) == 0 &&
          whole_text(a, room, 2, kCFStringEncodingUTF8) == 1);
    CHECK(whole_number(number, kCFNumberDoubleType, &d) == 1 && d == 0.5);
    CHECK(whole_number(number, kCFNumberSInt32Type, &i) == 0 && whole_float(number) == 1);

    std::thread([] { CHECK(keeps_registers()); }).join();
    std::printf("%s\n", failures ? "failed" : "all passed");
    return failures;
}
