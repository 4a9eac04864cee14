// Uses std::from_chars where the C++ library has it for double, since it is fast; libc++ 19 lacks
// it, and it does not distinguish infinity from zero for a decimal out of range. There strtod_l is
// used. Both round to nearest, ties to even.
#include "property_list/decimal.h"

#include <locale.h>
#include <stdlib.h>

#include <charconv>
#include <string>
#include <system_error>
#include <version>

namespace lumo::platform {

double nearest_double(std::string_view decimal) {
#ifdef __cpp_lib_to_chars
    double value = 0;
    if (std::from_chars(decimal.data(), decimal.data() + decimal.size(), value).ec == std::errc{}) {
        return value;
    }
#endif
    static const locale_t no_locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return strtod_l(std::string(decimal).c_str(), nullptr, no_locale);
}

} // namespace lumo::platform
