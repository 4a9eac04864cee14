// Printing and scanning by a format.
#include "system/locales.h"
#include "system/system.h"
#include "system/variadic.h"

#include <stdio.h>

#include <cstdarg>
#include <cstdio>
#include <cwchar>

namespace lumo::macos {
namespace {

#define ARGUMENTS(last)                                                                            \
    va_list arguments;                                                                             \
    va_start(arguments, last);                                                                     \
    take_mac_arguments(arguments);
#define ARGUMENTS_OF(list)                                                                         \
    va_list arguments;                                                                             \
    copy_list(arguments, list);
#define RETURN(result)                                                                             \
    const int returned = result;                                                                   \
    va_end(arguments);                                                                             \
    return returned;

int mac_printf(const char* format, ...) {
    ARGUMENTS(format)
    RETURN(std::vprintf(MAC_FORMAT(format), arguments))
}

int mac_fprintf(FILE* stream, const char* format, ...) {
    ARGUMENTS(format)
    RETURN(std::vfprintf(stream, MAC_FORMAT(format), arguments))
}

int mac_snprintf(char* text, std::size_t size, const char* format, ...) {
    ARGUMENTS(format)
    RETURN(std::vsnprintf(text, size, MAC_FORMAT(format), arguments))
}

int mac_swprintf(wchar_t* text, std::size_t size, const wchar_t* format, ...) {
    ARGUMENTS(format)
    RETURN(std::vswprintf(text, size, MAC_FORMAT(format), arguments))
}

int mac_sscanf(const char* text, const char* format, ...) {
    ARGUMENTS(format)
    RETURN(std::vsscanf(text, MAC_SCAN_FORMAT(format), arguments))
}

int mac_vprintf(const char* format, MacList list) {
    ARGUMENTS_OF(list)
    RETURN(std::vprintf(MAC_FORMAT(format), arguments))
}

int mac_vfprintf(FILE* stream, const char* format, MacList list) {
    ARGUMENTS_OF(list)
    RETURN(std::vfprintf(stream, MAC_FORMAT(format), arguments))
}

int mac_vsnprintf(char* text, std::size_t size, const char* format, MacList list) {
    ARGUMENTS_OF(list)
    RETURN(std::vsnprintf(text, size, MAC_FORMAT(format), arguments))
}

int mac_snprintf_l(char* text, std::size_t size, locale_t locale, const char* format, ...) {
    const LocaleScope scope(locale);
    ARGUMENTS(format)
    RETURN(std::vsnprintf(text, size, MAC_FORMAT(format), arguments))
}

int mac_asprintf_l(char** text, locale_t locale, const char* format, ...) {
    const LocaleScope scope(locale);
    ARGUMENTS(format)
    RETURN(::vasprintf(text, MAC_FORMAT(format), arguments))
}

int mac_sscanf_l(const char* text, locale_t locale, const char* format, ...) {
    const LocaleScope scope(locale);
    ARGUMENTS(format)
    RETURN(std::vsscanf(text, MAC_SCAN_FORMAT(format), arguments))
}

const Name names[] = {
    row("_printf", mac_printf),         row("_fprintf", mac_fprintf),
    row("_snprintf", mac_snprintf),     row("_swprintf", mac_swprintf),
    row("_sscanf", mac_sscanf),         row("_vprintf", mac_vprintf),
    row("_vfprintf", mac_vfprintf),     row("_vsnprintf", mac_vsnprintf),
    row("_snprintf_l", mac_snprintf_l), row("_asprintf_l", mac_asprintf_l),
    row("_sscanf_l", mac_sscanf_l),
};

} // namespace

std::span<const Name> printing_names() {
    return names;
}

} // namespace lumo::macos
