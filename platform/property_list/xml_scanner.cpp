// CoreFoundation's dialect is simpler than XML, but not a subset of it: attributes end at the first
// ">", even inside quotes; a tag is empty when "/" immediately precedes its ">", and any other "/"
// before the first blank is part of its name; there is no internal document type subset; comments
// and processing instructions are allowed only between elements; entities are the five predefined
// ones and numeric ones; line ends are not normalised, and control characters are allowed anywhere.
#include "property_list/xml_scanner.h"

#include "property_list/utf8.h"

#include <array>
#include <bit>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <system_error>

namespace lumo::platform {
namespace {

constexpr std::array<std::string_view, 11> element_names = {
    "key", "integer", "real", "string", "dict", "array", "true", "false", "data", "date", "plist"};

std::string_view name_of(Element element) {
    return element_names[static_cast<std::size_t>(element)];
}

std::optional<Element> element_named(std::string_view name) {
    for (std::size_t i = 0; i < element_names.size(); ++i) {
        if (name == element_names[i]) {
            return static_cast<Element>(i);
        }
    }
    return std::nullopt;
}

bool is_blank(char c) {
    return c == ' ' || c == '\n' || c == '\t' || c == '\r';
}

constexpr std::uint64_t in_each_byte(std::uint8_t byte) {
    return 0x0101010101010101u * byte;
}

/// Sets the high bit of each zero byte of `word`; bytes above the first one found may be wrong.
constexpr std::uint64_t zero_bytes(std::uint64_t word) {
    return (word - in_each_byte(1)) & ~word & in_each_byte(0x80);
}

/// The first "<" or "&" from `at` on, or `end`. Sets `high` to non-zero when a byte before it is
/// not ASCII.
const char* find_markup(const char* at, const char* end, std::uint64_t& high) {
    while (end - at >= 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, at, 8);
        std::uint64_t found =
            zero_bytes(word ^ in_each_byte('<')) | zero_bytes(word ^ in_each_byte('&'));
        if (found != 0) {
            const int bits = std::countr_zero(found) - 7; // of the bytes before the one found
            high |= word & in_each_byte(0x80) & ((std::uint64_t{1} << bits) - 1);
            return at + bits / 8;
        }
        high |= word & in_each_byte(0x80);
        at += 8;
    }
    while (at != end && *at != '<' && *at != '&') {
        high |= static_cast<std::uint8_t>(*at) & 0x80u;
        ++at;
    }
    return at;
}

} // namespace

void XmlScanner::skip_blanks() {
    while (at_ != end_ && is_blank(*at_)) {
        ++at_;
    }
}

/// Moves past the next `mark` that starts at least `from` characters ahead; false when there is
/// none.
bool XmlScanner::skip_past(std::string_view mark, std::size_t from) {
    const std::size_t found = rest().find(mark, from);
    if (found == std::string_view::npos) {
        return false;
    }
    at_ += found + mark.size();
    return true;
}

bool XmlScanner::skip_doctype() {
    const std::size_t found = rest().find_first_of(">[");
    if (found == std::string_view::npos || at_[found] == '[') {
        return false;
    }
    at_ += found + 1;
    return true;
}

bool XmlScanner::skip_prolog() {
    for (;;) {
        skip_blanks();
        if (!starts_with("<")) {
            return false;
        }
        if (starts_with("<?")) {
            if (!skip_past("?>", 2)) {
                return false;
            }
        } else if (starts_with("<!--")) {
            // Only here, a comment has at least one character: <!----> does not end it.
            if (!skip_past("-->", 5)) {
                return false;
            }
        } else if (!starts_with("<!DOCTYPE")) {
            return true;
        } else if (!skip_doctype()) {
            return false;
        }
    }
}

bool XmlScanner::skip_to_tag() {
    for (;;) {
        skip_blanks();
        if (at_ == end_ || *at_ != '<') {
            return false;
        }
        if (starts_with("<?")) {
            // Only here, <?> is complete.
            if (!skip_past("?>", 1)) {
                return false;
            }
        } else if (!starts_with("<!")) {
            return true;
        } else if (!starts_with("<!--") || !skip_past("-->", 4)) {
            return false;
        }
    }
}

std::optional<Tag> XmlScanner::start_tag() {
    const char* start = ++at_;
    while (at_ != end_ && !is_blank(*at_) && *at_ != '>') {
        ++at_;
    }
    std::string_view name{start, static_cast<std::size_t>(at_ - start)};
    const std::size_t close = rest().find('>');
    if (close == 0 && name.ends_with('/')) {
        name.remove_suffix(1);
    }
    const auto element = element_named(name);
    if (!element || close == std::string_view::npos) {
        return std::nullopt;
    }
    at_ += close + 1;
    return Tag{*element, at_[-2] == '/'};
}

bool XmlScanner::end_tag(Element element) {
    const std::string_view name = name_of(element);
    if (!starts_with("</") || !rest().substr(2).starts_with(name)) {
        return false;
    }
    at_ += 2 + name.size();
    skip_blanks();
    return at_ != end_ && *at_++ == '>';
}

std::string_view XmlScanner::raw_text() {
    const std::string_view text = rest().substr(0, rest().find('<'));
    at_ += text.size();
    return text;
}

std::optional<Text> XmlScanner::text() {
    const char* start = at_;
    std::uint64_t high = 0;
    at_ = find_markup(at_, end_, high);
    if (at_ == end_) {
        return std::nullopt;
    }
    if (*at_ == '<' && !starts_with("<!")) {
        return Text{{start, static_cast<std::size_t>(at_ - start)}, high == 0};
    }
    scratch_.assign(start, at_);
    while (!at_end_tag()) {
        if (!append_piece()) {
            return std::nullopt;
        }
    }
    return Text{scratch_, false};
}

/// Appends an entity or CDATA section and the plain text after it to the scratch text.
bool XmlScanner::append_piece() {
    if (at_ == end_ || !(*at_ == '&' ? append_entity() : append_character_data())) {
        return false;
    }
    const char* start = at_;
    std::uint64_t high = 0;
    at_ = find_markup(at_, end_, high);
    scratch_.append(start, at_);
    return true;
}

bool XmlScanner::append_character_data() {
    constexpr std::string_view open = "<![CDATA[";
    if (!starts_with(open)) {
        return false;
    }
    const char* start = at_ + open.size();
    if (!skip_past("]]>", open.size())) {
        return false;
    }
    scratch_.append(start, at_ - 3);
    return true;
}

bool XmlScanner::append_entity() {
    struct Named {
        std::string_view name;
        char character;
    };
    constexpr Named names[] = {
        {"&lt;", '<'}, {"&gt;", '>'}, {"&amp;", '&'}, {"&apos;", '\''}, {"&quot;", '"'}};
    for (const Named& entity : names) {
        if (starts_with(entity.name)) {
            scratch_.push_back(entity.character);
            at_ += entity.name.size();
            return true;
        }
    }
    return starts_with("&#") && append_numeric_entity(rest().substr(2));
}

/// Appends the character of a numeric entity; `digits` follow "&#". Without any digit it is U+0000.
bool XmlScanner::append_numeric_entity(std::string_view digits) {
    constexpr std::size_t most_digits = 8;
    const int base = digits.starts_with('x') ? 16 : 10;
    digits.remove_prefix(base == 16 ? 1 : 0);
    const std::size_t count = digits.substr(0, most_digits + 1).find(';');
    if (count == std::string_view::npos) {
        return false;
    }
    const char* end = digits.data() + count;
    std::uint32_t character = 0;
    if (count > 0) {
        const auto [at, error] = std::from_chars(digits.data(), end, character, base);
        if (error != std::errc{} || at != end) {
            return false;
        }
    }
    if (!is_unicode_scalar(character)) {
        return false;
    }
    append_utf8(scratch_, character);
    at_ = end + 1;
    return true;
}

} // namespace lumo::platform
