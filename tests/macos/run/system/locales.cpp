// The functions of libSystem that have a locale as a parameter, and those that read numbers.
#include "system/locales.h"

#include "system/system.h"

#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <wchar.h>

#include <cerrno>
#include <climits>

namespace lumo::macos {

locale_t c_locale() {
    static const locale_t locale = ::newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
}

namespace {

locale_t mac_newlocale(int mask, const char* name, locale_t base) {
    constexpr int bits[] = {LC_COLLATE_MASK,  LC_CTYPE_MASK,   LC_MESSAGES_MASK,
                            LC_MONETARY_MASK, LC_NUMERIC_MASK, LC_TIME_MASK};
    if (mask >> 6 != 0) {
        unknown("mask of newlocale", mask);
    }
    int here = 0;
    for (int i = 0; i < 6; ++i) {
        here |= mask >> i & 1 ? bits[i] : 0;
    }
    return done(::newlocale(here, name, base));
}

void mac_freelocale(locale_t locale) {
    ::freelocale(locale);
}

int mb_cur_max = 1; // a variable on a Mac, which setlocale sets

char* mac_setlocale(int category, const char* name) {
    constexpr int categories[] = {LC_ALL,     LC_COLLATE, LC_CTYPE,   LC_MONETARY,
                                  LC_NUMERIC, LC_TIME,    LC_MESSAGES};
    if (category < 0 || category >= 7) {
        unknown("category of setlocale", category);
    }
    char* const result = ::setlocale(categories[category], name);
    mb_cur_max = static_cast<int>(MB_CUR_MAX);
    return result;
}

struct MacNumbers { // struct lconv, whose fields are in another order from here on
    char* texts[10];
    char chars[14];
};

MacNumbers* numbers(const lconv& here) {
    thread_local MacNumbers there;
    const auto number = [](char c) { return c == CHAR_MAX ? '\x7f' : c; }; // not available
    there = {{here.decimal_point, here.thousands_sep, here.grouping, here.int_curr_symbol,
              here.currency_symbol, here.mon_decimal_point, here.mon_thousands_sep,
              here.mon_grouping, here.positive_sign, here.negative_sign},
             {number(here.int_frac_digits), number(here.frac_digits), number(here.p_cs_precedes),
              number(here.p_sep_by_space), number(here.n_cs_precedes), number(here.n_sep_by_space),
              number(here.p_sign_posn), number(here.n_sign_posn), number(here.int_p_cs_precedes),
              number(here.int_n_cs_precedes), number(here.int_p_sep_by_space),
              number(here.int_n_sep_by_space), number(here.int_p_sign_posn),
              number(here.int_n_sign_posn)}};
    return &there;
}

MacNumbers* mac_localeconv() {
    return numbers(*::localeconv());
}

MacNumbers* mac_localeconv_l(locale_t locale) {
    const LocaleScope scope(locale);
    return numbers(*::localeconv());
}

// On a Mac with arm64 a long double is a double.
#if defined(__aarch64__)
double mac_strtold(const char* text, char** end) {
    return ::strtod(text, end);
}

double mac_wcstold(const wchar_t* text, wchar_t** end) {
    return ::wcstod(text, end);
}
#else
long double mac_strtold(const char* text, char** end) {
    return ::strtold(text, end);
}

long double mac_wcstold(const wchar_t* text, wchar_t** end) {
    return ::wcstold(text, end);
}
#endif

/// Returns a number that `read` has read; sets the Mac's errno when it is out of range.
template <class Read>
auto with_range(Read read) {
    errno = 0;
    const auto number = read();
    if (errno != 0) {
        mac_errno() = mac_error(errno);
    }
    return number;
}

double mac_strtod(const char* text, char** end) {
    return with_range([&] { return ::strtod(text, end); });
}

float mac_strtof(const char* text, char** end) {
    return with_range([&] { return ::strtof(text, end); });
}

// A long has the size of a long long on both systems.
long long mac_strtoll(const char* text, char** end, int base) {
    return with_range([&] { return ::strtoll(text, end, base); });
}

unsigned long long mac_strtoull(const char* text, char** end, int base) {
    return with_range([&] { return ::strtoull(text, end, base); });
}

const Name names[] = {
    row("_newlocale", mac_newlocale),
    row("_freelocale", mac_freelocale),
    row("_setlocale", mac_setlocale),
    row("___mb_cur_max", &mb_cur_max),
    row("_localeconv", mac_localeconv),
    row("_localeconv_l", mac_localeconv_l),
    row("_strcoll_l", in_locale<::strcoll>(::strcoll)),
    row("_strxfrm_l", in_locale<::strxfrm>(::strxfrm)),
    row("_wcscoll_l", in_locale<::wcscoll>(::wcscoll)),
    row("_wcsxfrm_l", in_locale<::wcsxfrm>(::wcsxfrm)),
    row("_strftime_l", in_locale<::strftime>(::strftime)),
    row("_strtod", mac_strtod),
    row("_strtod_l", in_locale<mac_strtod>(mac_strtod)),
    row("_strtof", mac_strtof),
    row("_strtof_l", in_locale<mac_strtof>(mac_strtof)),
    row("_strtold", mac_strtold),
    row("_wcstold", mac_wcstold),
    row("_strtold_l", in_locale<mac_strtold>(mac_strtold)),
    row("_strtol", mac_strtoll),
    row("_strtoul", mac_strtoull),
    row("_strtoll", mac_strtoll),
    row("_strtoll_l", in_locale<mac_strtoll>(mac_strtoll)),
    row("_strtoull", mac_strtoull),
    row("_strtoull_l", in_locale<mac_strtoull>(mac_strtoull)),
};

} // namespace

std::span<const Name> locale_names() {
    return names;
}

} // namespace lumo::macos
