// Regular expressions: the structures differ, so the Mac's holds a pointer to this system's.
#include "system/system.h"

#include <regex.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace lumo::macos {
namespace {

struct MacRegex {
    int magic;
    std::size_t groups;
    const char* end;
    regex_t* here;
};

struct MacMatch {
    std::int64_t start, end;
};

int mac_regcomp(MacRegex* regex, const char* pattern, int flags) {
    if ((flags & ~0xf) != 0) {
        unknown("flags of regcomp", flags);
    }
    // REG_EXTENDED and REG_ICASE have the same bits on both systems; REG_NOSUB and REG_NEWLINE are
    // exchanged.
    const int here = (flags & 3) | (flags & 4 ? REG_NOSUB : 0) | (flags & 8 ? REG_NEWLINE : 0);
    regex->here = new regex_t{};
    const int result = ::regcomp(regex->here, pattern, here);
    regex->groups = regex->here->re_nsub;
    return result;
}

int mac_regexec(const MacRegex* regex, const char* text, std::size_t count, MacMatch* matches,
                int flags) {
    std::array<regmatch_t, 10> here{};
    const std::size_t wanted = std::min(count, here.size());
    const int result = ::regexec(regex->here, text, wanted, here.data(), flags);
    for (std::size_t i = 0; result == 0 && matches && i < wanted; ++i) {
        matches[i] = {here[i].rm_so, here[i].rm_eo};
    }
    return result;
}

void mac_regfree(MacRegex* regex) {
    ::regfree(regex->here);
    delete regex->here;
}

const Name names[] = {
    row("_regcomp", mac_regcomp),
    row("_regexec", mac_regexec),
    row("_regfree", mac_regfree),
};

} // namespace

std::span<const Name> regex_names() {
    return names;
}

} // namespace lumo::macos
