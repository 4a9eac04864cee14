// Character classes and characters of several bytes.
#include "system/locales.h"
#include "system/system.h"

#include <ctype.h>
#include <stdlib.h>
#include <wchar.h>
#include <wctype.h>

#include <cstddef>
#include <cstdint>

namespace lumo::macos {
namespace {

int mb_cur_max() {
    return static_cast<int>(MB_CUR_MAX);
}

struct RuneTable {
    char magic[8], encoding[32];
    void *get, *put;
    std::int32_t invalid;
    std::uint32_t kinds[256];
    std::int32_t lower[256], upper[256];
    char ranges[3 * 16 + 32];
};
static_assert(offsetof(RuneTable, kinds) == 60);
RuneTable runes;

std::uint32_t kinds_of(int c) {
    constexpr struct {
        int (*is)(int);
        std::uint32_t bit;
    } classes[] = {{isalpha, 0x100},    {iscntrl, 0x200},   {isdigit, 0x400},  {isgraph, 0x800},
                   {islower, 0x1000},   {ispunct, 0x2000},  {isspace, 0x4000}, {isupper, 0x8000},
                   {isxdigit, 0x10000}, {isblank, 0x20000}, {isprint, 0x40000}};
    std::uint32_t kinds = 0;
    for (const auto& one : classes) {
        kinds |= one.is(c) ? one.bit : 0;
    }
    return kinds;
}

int mac_maskrune(int c, unsigned long mask) {
    return c >= 0 && c < 256 ? static_cast<int>(runes.kinds[c] & mask) : 0;
}

int mac_maskrune_l(int c, unsigned long mask, locale_t) {
    return mac_maskrune(c, mask);
}

int mac_tolower(int c) {
    return static_cast<int>(::towlower(static_cast<wint_t>(c)));
}

int mac_toupper(int c) {
    return static_cast<int>(::towupper(static_cast<wint_t>(c)));
}

const Name names[] = {
    row("____mb_cur_max_l", in_locale<mb_cur_max>(mb_cur_max)),
    row("____tolower_l", in_locale<mac_tolower>(mac_tolower)),
    row("____toupper_l", in_locale<mac_toupper>(mac_toupper)),
    row("___tolower", mac_tolower),
    row("___toupper", mac_toupper),
    row("___maskrune", mac_maskrune),
    row("___maskrune_l", mac_maskrune_l),
    row("__DefaultRuneLocale", &runes),
    row("_btowc_l", in_locale<::btowc>(::btowc)),
    row("_wctob_l", in_locale<::wctob>(::wctob)),
    row("_mbrlen_l", in_locale<::mbrlen>(::mbrlen)),
    row("_mbrtowc_l", in_locale<::mbrtowc>(::mbrtowc)),
    row("_mbsnrtowcs_l", in_locale<::mbsnrtowcs>(::mbsnrtowcs)),
    row("_mbsrtowcs_l", in_locale<::mbsrtowcs>(::mbsrtowcs)),
    row("_mbtowc_l", in_locale<::mbtowc>(::mbtowc)),
    row("_wcrtomb_l", in_locale<::wcrtomb>(::wcrtomb)),
    row("_wcsnrtombs_l", in_locale<::wcsnrtombs>(::wcsnrtombs)),
};

} // namespace

std::span<const Name> character_names() {
    return names;
}

void prepare_characters() {
    for (int c = 0; c < 128; ++c) {
        runes.kinds[c] = kinds_of(c);
    }
    for (int c = 0; c < 256; ++c) {
        runes.lower[c] = ::tolower(c);
        runes.upper[c] = ::toupper(c);
    }
}

} // namespace lumo::macos
