// Locales: null is the C locale, and -1 the current one, on both systems.
#pragma once

#include <locale.h>

namespace lumo::macos {

/// The C locale; lives as long as the process.
locale_t c_locale();

/// Uses a locale in this thread while it lives.
class LocaleScope {
public:
    explicit LocaleScope(locale_t locale) : before_(::uselocale(locale ? locale : c_locale())) {}
    ~LocaleScope() { ::uselocale(before_); }
    LocaleScope(const LocaleScope&) = delete;
    LocaleScope& operator=(const LocaleScope&) = delete;

private:
    locale_t before_;
};

/// Implements NAME_l(arguments..., locale) by calling NAME(arguments...) with the locale in use.
template <auto function, class Result, class... Arguments>
auto in_locale(Result (*)(Arguments...)) {
    return +[](Arguments... arguments, locale_t locale) -> Result {
        const LocaleScope scope(locale);
        return function(arguments...);
    };
}

} // namespace lumo::macos
