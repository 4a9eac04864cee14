// Scans the text of an XML property list: blanks, comments, tags and the text between them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lumo::platform {

/// The elements of a property list, in the order of their names in the scanner's table.
enum class Element : std::uint8_t {
    key,
    integer,
    real,
    string,
    dict,
    array,
    boolean_true,
    boolean_false,
    data,
    date,
    plist
};

/// A start tag; `empty` when it is self-closing.
struct Tag {
    Element element;
    bool empty;
};

/// The text of a <string>, <key> or <real>.
struct Text {
    std::string_view utf8; ///< Not validated; valid until the next text is read.
    bool ascii;
};

/// Each function advances past what it has read; after a failure the position is undefined.
class XmlScanner {
public:
    explicit XmlScanner(std::string_view text)
        : at_{text.data()}, end_{text.data() + text.size()} {}

    /// Skips everything allowed before the root element. False when none follows.
    bool skip_prolog();
    /// Skips blanks, comments and processing instructions up to the next tag. False when anything
    /// else precedes it.
    bool skip_to_tag();
    /// Whether the current tag is an end tag.
    bool at_end_tag() const { return end_ - at_ > 1 && at_[1] == '/'; }

    /// Reads a start tag and skips its attributes; nothing for an unknown element.
    std::optional<Tag> start_tag();
    /// Skips the end tag of `element`; false when the input has anything else.
    bool end_tag(Element element);

    /// The text up to the next tag, with entities and CDATA resolved; nothing when one is
    /// malformed.
    std::optional<Text> text();
    /// The bytes up to the next tag, unchanged.
    std::string_view raw_text();

private:
    std::string_view rest() const { return {at_, static_cast<std::size_t>(end_ - at_)}; }
    bool starts_with(std::string_view prefix) const { return rest().starts_with(prefix); }
    void skip_blanks();
    bool skip_past(std::string_view mark, std::size_t from);
    bool skip_doctype();
    std::string_view plain_text();
    bool append_piece();
    bool append_character_data();
    bool append_entity();
    bool append_numeric_entity(std::string_view digits);

    const char* at_;
    const char* end_;
    std::string scratch_; ///< The text of an element that has entities or CDATA.
};

} // namespace lumo::platform
