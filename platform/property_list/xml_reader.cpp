// Reads a property list in XML in one pass. Finished values are pushed on a stack; an open
// container stores where its own values begin and removes them when it ends. Therefore nesting
// takes no call stack.
//
//     <plist> one value </plist>             optional, may nest
//     <dict> <key>text</key> value ... </dict>   the later of two equal keys wins
//     <array> value ... </array>
//     <string>, <integer>, <real>, <data>, <date>, <true/>, <false/>
#include "property_list/xml_reader.h"

#include "base/utf8.h"
#include "core_foundation/objects.h"
#include "property_list/recent_strings.h"
#include "property_list/xml_encoding.h"
#include "property_list/xml_scanner.h"
#include "property_list/xml_values.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace lumo::platform {
namespace {

/// The maximum number of nested arrays and dictionaries, including the outermost, as in
/// CoreFoundation, which counts differently in the binary format.
constexpr std::size_t max_containers = 512;

/// An open element. The values from `first` on belong to it.
struct Open {
    Element element; ///< plist, array or dict
    std::size_t first;
    std::size_t times; ///< Number of <plist> nested directly here.
};

class XmlReader {
public:
    explicit XmlReader(std::string_view text) : scanner_{text} {}

    Owned read();

private:
    bool read_element();
    bool takes(Element element) const;
    bool open(Element element);
    bool close();
    Owned close_dictionary(std::span<Owned> keys_and_values);
    Owned read_value(Tag tag);
    Owned read_text(Tag tag);
    Owned read_integer();
    Owned read_real();
    Owned read_date();
    Owned read_data();
    bool push(Owned value);
    std::span<Owned> values_from(std::size_t first) { return std::span{values_}.subspan(first); }

    XmlScanner scanner_;
    std::vector<Open> open_;
    std::vector<Owned> values_;
    std::size_t depth_ = 0;
    Owned last_dictionary_; ///< The last one created, or null.
    RecentStrings strings_;
    std::vector<std::uint8_t> data_;
};

Owned XmlReader::read() {
    if (!scanner_.skip_prolog()) {
        return nullptr;
    }
    do {
        if (!read_element()) {
            return nullptr;
        }
        while (!open_.empty()) {
            if (!scanner_.skip_to_tag()) {
                return nullptr;
            }
            if (!scanner_.at_end_tag()) {
                break;
            }
            if (!close()) {
                return nullptr;
            }
        }
    } while (!open_.empty());
    return std::move(values_.back());
}

/// Reads a complete value, or the start tag of a container.
bool XmlReader::read_element() {
    const auto tag = scanner_.start_tag();
    if (!tag || !takes(tag->element)) {
        return false;
    }
    switch (tag->element) {
    case Element::plist:
        return !tag->empty && open(Element::plist);
    case Element::array:
        return tag->empty ? push(make_array({})) : open(Element::array);
    case Element::dict:
        return tag->empty ? push(make_dictionary({}, Duplicates::last_wins)) : open(Element::dict);
    default:
        return push(read_value(*tag)) && (tag->empty || scanner_.end_tag(tag->element));
    }
}

/// Whether `element` is allowed here: alternating keys and values in a dictionary, one value in a
/// plist.
bool XmlReader::takes(Element element) const {
    if (open_.empty() || open_.back().element == Element::array) {
        return true;
    }
    const std::size_t own_values = values_.size() - open_.back().first;
    if (open_.back().element == Element::plist) {
        return own_values == 0;
    }
    return own_values % 2 == 1 || element == Element::key;
}

bool XmlReader::open(Element element) {
    if (element != Element::plist && ++depth_ > max_containers) {
        return false;
    }
    if (element == Element::plist && !open_.empty() && open_.back().element == Element::plist) {
        ++open_.back().times;
    } else {
        open_.push_back({element, values_.size(), 1});
    }
    return true;
}

/// The UID that a dictionary represents: keyed archives write one as a dictionary with a number
/// under "CF$UID" as its only entry.
std::optional<std::uint32_t> uid_in(const Dictionary& dictionary) {
    const std::span<const Entry> entries = dictionary.items();
    if (entries.size() != 1 || entries[0].value->kind != Kind::number) {
        return std::nullopt;
    }
    const auto& key = as<String>(entries[0].key);
    if (!key.is_ascii() || key.ascii() != "CF$UID") {
        return std::nullopt;
    }
    const auto& number = as<Number>(entries[0].value);
    if (!number.is_real()) {
        return static_cast<std::uint32_t>(number.integer);
    }
    constexpr double limit = 9223372036854775808.0; // 2^63
    const bool fits = number.real >= -limit && number.real < limit;
    return fits ? static_cast<std::uint32_t>(static_cast<std::int64_t>(number.real)) : 0;
}

bool XmlReader::close() {
    Open& top = open_.back();
    if (!scanner_.end_tag(top.element)) {
        return false;
    }
    const std::span<Owned> own = values_from(top.first);
    if (top.element == Element::plist) {
        if (own.empty()) {
            return false;
        }
        if (--top.times == 0) {
            open_.pop_back();
        }
        return true;
    }
    if (top.element == Element::dict && own.size() % 2 == 1) {
        return false;
    }
    Owned value = top.element == Element::array ? make_array(own) : close_dictionary(own);
    values_.resize(top.first);
    open_.pop_back();
    --depth_;
    return push(std::move(value));
}

Owned XmlReader::close_dictionary(std::span<Owned> keys_and_values) {
    const auto* similar = last_dictionary_ ? &as<Dictionary>(last_dictionary_.get()) : nullptr;
    last_dictionary_ = make_dictionary(keys_and_values, Duplicates::last_wins, similar);
    const auto& dictionary = as<Dictionary>(last_dictionary_.get());
    const auto uid = uid_in(dictionary);
    return uid ? make_uid(*uid) : share_unshared(&dictionary);
}

bool XmlReader::push(Owned value) {
    if (!value) {
        return false;
    }
    values_.push_back(std::move(value));
    return true;
}

Owned XmlReader::read_value(Tag tag) {
    switch (tag.element) {
    case Element::key:
    case Element::string:
        return read_text(tag);
    case Element::boolean_true:
        return make_boolean(true);
    case Element::boolean_false:
        return make_boolean(false);
    case Element::integer:
        return tag.empty ? nullptr : read_integer();
    case Element::real:
        return tag.empty ? nullptr : read_real();
    case Element::data:
        return tag.empty ? nullptr : read_data();
    case Element::date:
        return tag.empty ? nullptr : read_date();
    default:
        return nullptr;
    }
}

/// `text` with U+FFFD for each byte A9 at the start of a character; nothing when any other byte is
/// invalid UTF-8.
std::optional<std::string> with_stray_bytes_replaced(std::string_view text) {
    constexpr char stray_byte = '\xA9';
    std::string replaced;
    while (!text.empty()) {
        const std::size_t size = first_utf8_character(text).size;
        if (size != 0) {
            replaced += text.substr(0, size);
        } else if (text.front() == stray_byte) {
            append_utf8(replaced, 0xFFFD);
        } else {
            return std::nullopt;
        }
        text.remove_prefix(std::max<std::size_t>(size, 1));
    }
    return replaced;
}

/// A string from UTF-8 text. CoreFoundation accepts one invalid byte, A9, the copyright sign of
/// ISO-8859-1, so that a list with a stray one remains readable; null for any other invalid text.
Owned make_text(std::string_view text) {
    if (Owned string = make_string(text)) {
        return string;
    }
    const auto replaced = with_stray_bytes_replaced(text);
    return replaced ? make_string(*replaced) : nullptr;
}

/// Reads a string or key, without a byte order mark at its start.
Owned XmlReader::read_text(Tag tag) {
    if (tag.empty) {
        return make_string_ascii({});
    }
    const auto text = scanner_.text();
    if (!text) {
        return nullptr;
    }
    if (text->ascii) {
        return strings_.get(text->utf8);
    }
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    return make_text(text->utf8.substr(text->utf8.starts_with(mark) ? mark.size() : 0));
}

Owned XmlReader::read_integer() {
    const auto integer = parse_integer(scanner_.raw_text());
    if (!integer) {
        return nullptr;
    }
    const bool wide = !integer->negative && integer->magnitude >> 63 != 0;
    if (wide) {
        return make_integer_128(0, integer->magnitude);
    }
    return make_integer(
        static_cast<std::int64_t>(integer->negative ? 0 - integer->magnitude : integer->magnitude));
}

Owned XmlReader::read_real() {
    const auto text = scanner_.text();
    const auto real = text ? parse_real(text->utf8) : std::nullopt;
    return real ? make_real(*real) : nullptr;
}

Owned XmlReader::read_date() {
    const auto seconds = parse_date(scanner_.raw_text());
    return seconds ? make_date(*seconds) : nullptr;
}

Owned XmlReader::read_data() {
    return decode_base64(scanner_.raw_text(), data_) ? make_data(data_) : nullptr;
}

} // namespace

Owned read_xml(std::string_view bytes) {
    std::string storage;
    const auto text = xml_text(bytes, storage);
    return text ? XmlReader{*text}.read() : nullptr;
}

} // namespace lumo::platform
