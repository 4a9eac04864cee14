// CoreFoundation's dialect is simpler than XML, but not a subset of it: attributes end at the first
// ">", even inside quotes; a tag is empty when "/" immediately precedes its ">", and any other "/"
// before the first blank is part of its name; there is no internal document type subset; comments
// and processing instructions are allowed only between elements; entities are the five predefined
// ones and numeric ones; line ends are not normalised, and control characters are allowed anywhere.
#include "property_list/xml_scanner.h"

#include "base/utf8.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
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

/// The text up to the next "<" or "&", or up to the end.
std::string_view XmlScanner::plain_text() {
    const char* start = at_;
    at_ = std::find_if(at_, end_, [](char c) { return c == '<' || c == '&'; });
    return {start, static_cast<std::size_t>(at_ - start)};
}

std::optional<Text> XmlScanner::text() {
    const std::string_view plain = plain_text();
    if (at_ == end_) {
        return std::nullopt;
    }
    if (*at_ == '<' && !starts_with("<!")) {
        return Text{plain, is_ascii(plain)};
    }
    scratch_ = plain;
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
    scratch_ += plain_text();
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
    constexpr std::size_t max_digits = 8;
    const int base = digits.starts_with('x') ? 16 : 10;
    digits.remove_prefix(base == 16 ? 1 : 0);
    const std::size_t count = digits.substr(0, max_digits + 1).find(';');
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
