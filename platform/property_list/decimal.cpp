// Uses std::from_chars where the C++ library has it for double, since it is exact and fast; libc++
// 19 lacks it, and there strtod_l is used. Both round to nearest, ties to even.
#include "property_list/decimal.h"

#include <version>

#ifdef __cpp_lib_to_chars
#include <algorithm>
#include <charconv>
#include <cstddef>
#include <limits>
#include <system_error>
#else
#include <locale.h>
#include <stdlib.h>

#include <string>
#endif

namespace lumo::platform {

#ifdef __cpp_lib_to_chars

namespace {

/// The value of a decimal that is out of the range of double: zero when its first significant digit
/// is after the point once the exponent is applied, else infinity.
double beyond_double(std::string_view decimal) {
    const std::size_t mark = decimal.find_first_of("eE");
    const std::string_view mantissa = decimal.substr(0, mark);
    const std::size_t first = mantissa.find_first_of("123456789");
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    if (first == mantissa.npos) {
        return 0;
    }
    bool negative = false;
    double exponent = 0;
    if (mark != decimal.npos) {
        std::string_view digits = decimal.substr(mark + 1);
        negative = digits[0] == '-';
        digits.remove_prefix(negative || digits[0] == '+' ? 1 : 0);
        for (const char c : digits) {
            exponent = exponent * 10 + (c - '0');
        }
    }
    const double place = static_cast<double>(point) - static_cast<double>(first);
    return place + (negative ? -exponent : exponent) > 0 ? std::numeric_limits<double>::infinity()
                                                         : 0;
}

} // namespace

double nearest_double(std::string_view decimal) {
    double value = 0;
    const char* end = decimal.data() + decimal.size();
    const bool fits = std::from_chars(decimal.data(), end, value).ec == std::errc{};
    return fits ? value : beyond_double(decimal);
}

#else

double nearest_double(std::string_view decimal) {
    static const locale_t no_locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return strtod_l(std::string(decimal).c_str(), nullptr, no_locale);
}

#endif

} // namespace lumo::platform
