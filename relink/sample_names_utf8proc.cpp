// The key of a name with utf8proc. The name is composed before it is folded: folding turns the
// combining iota into a letter, so marks in another order would fold to another key.
#include "sample_names.h"

#include <utf8proc.h>

#include <cstddef>
#include <vector>

namespace lumo::exs::relink {
namespace {

/// Maps `text` according to `options` and composes it; false when it is not UTF-8.
bool map(std::string_view text, utf8proc_option_t options, std::string& mapped) {
    const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
    const auto length = static_cast<utf8proc_ssize_t>(text.size());
    const utf8proc_ssize_t count = utf8proc_decompose(bytes, length, nullptr, 0, options);
    if (count < 0) {
        return false;
    }
    // One code point more than the text has: the UTF-8 bytes are written over the code points.
    std::vector<utf8proc_int32_t> points(static_cast<std::size_t>(count) + 1);
    utf8proc_decompose(bytes, length, points.data(), count, options);
    const utf8proc_ssize_t size = utf8proc_reencode(points.data(), count, options);
    mapped.assign(reinterpret_cast<const char*>(points.data()), static_cast<std::size_t>(size));
    return true;
}

} // namespace

bool make_unicode_key(std::string_view name, std::string& key) {
    constexpr auto compose = static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPOSE);
    constexpr auto fold = static_cast<utf8proc_option_t>(compose | UTF8PROC_CASEFOLD);
    std::string composed;
    return map(name, compose, composed) && map(composed, fold, key);
}

} // namespace lumo::exs::relink
