// Objects and records are described in the same notation.
#include "platform/property_list_text.h"

#include "platform/number_records.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <utility>
#include <vector>

namespace lumo::test {
namespace {

template <class Ref>
Ref cast(CFTypeRef object) {
    return static_cast<Ref>(object);
}

std::string real_text(double value) {
    if (std::isnan(value)) {
        return "nan";
    }
    char text[32];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

std::string quoted(const Json& units) {
    std::string text = "\"";
    for (const auto& element : units) {
        const auto unit = element.get<unsigned>();
        if (unit >= 0x20 && unit < 0x7F && unit != '"' && unit != '\\') {
            text.push_back(static_cast<char>(unit));
        } else {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\%04x", unit);
            text += escape;
        }
    }
    return text + '"';
}

/// A whole number is identified by its binary form, since numbers of 128 bits have no public
/// accessor.
std::string integer_text(CFNumberRef number) {
    const std::string bytes = written(number);
    if (bytes.size() < 9 || bytes[8] != 0x14) {
        SInt64 value = 0;
        CFNumberGetValue(number, kCFNumberSInt64Type, &value);
        return std::to_string(value);
    }
    return "0x" + to_hex(bytes.substr(9, 16)) + " wide";
}

std::string number_text(CFNumberRef number) {
    if (!CFNumberIsFloatType(number)) {
        return integer_text(number);
    }
    double value = 0;
    CFNumberGetValue(number, kCFNumberDoubleType, &value);
    const bool single = written(number).at(8) == 0x22; // the marker of four bytes
    return (single ? "real32 " : "real ") + real_text(value);
}

/// A UID has no public type: it is an object of no other type, identified by its binary form.
std::string uid_text(CFTypeRef object) {
    const std::string bytes = written(object);
    if (bytes.size() < 10 || static_cast<unsigned char>(bytes[8]) >> 4 != 8) {
        return "something else";
    }
    unsigned value = 0;
    for (int i = 0; i <= (bytes[8] & 0xF); ++i) {
        value = value << 8 | static_cast<unsigned char>(bytes[9 + static_cast<std::size_t>(i)]);
    }
    return "uid " + std::to_string(value);
}

std::string joined(std::vector<std::string> parts, const char* open, const char* close) {
    std::string text = open;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        text += (i > 0 ? ", " : "") + parts[i];
    }
    return text + close;
}

std::string sorted(std::vector<std::string> parts, const char* open, const char* close) {
    std::sort(parts.begin(), parts.end());
    return joined(std::move(parts), open, close);
}

std::string array_text(CFArrayRef array) {
    std::vector<std::string> parts;
    parts.reserve(static_cast<std::size_t>(CFArrayGetCount(array)));
    for (CFIndex i = 0; i < CFArrayGetCount(array); ++i) {
        parts.push_back(described(CFArrayGetValueAtIndex(array, i)));
    }
    return joined(std::move(parts), "[", "]");
}

std::string dictionary_text(CFDictionaryRef dictionary) {
    std::vector<std::string> parts;
    for_each_entry(dictionary, [&](CFTypeRef key, CFTypeRef value) {
        parts.push_back(described(key) + ": " + described(value));
    });
    return sorted(std::move(parts), "{", "}");
}

std::string set_text(CFSetRef set) {
    std::vector<const void*> values(static_cast<std::size_t>(CFSetGetCount(set)));
    CFSetGetValues(set, values.data());
    std::vector<std::string> parts;
    parts.reserve(values.size());
    for (const void* value : values) {
        parts.push_back(described(value));
    }
    return sorted(std::move(parts), "set(", ")");
}

/// The UTF-16 units of UTF-8 text, a leading byte order mark included: CoreFoundation drops a mark
/// at the start only, so another character is put before it.
Json units_of_utf8(const std::string& utf8) {
    Json units = units_of(make_string("." + utf8).get());
    units.erase(0);
    return units;
}

std::string string_text(const Json& record) {
    return quoted(record.contains("u16")
                      ? record["u16"]
                      : units_of_utf8(record["v"].get_ref<const std::string&>()));
}

std::vector<std::string> each_described(const Json& records) {
    std::vector<std::string> parts;
    for (const Json& record : records) {
        parts.push_back(described(record));
    }
    return parts;
}

std::string dictionary_text(const Json& entries) {
    std::vector<std::string> parts;
    for (const Json& entry : entries) {
        const Json key = entry[0].is_string() ? Json{{"t", "string"}, {"v", entry[0]}} : entry[0];
        parts.push_back(described(key) + ": " + described(entry[1]));
    }
    return sorted(std::move(parts), "{", "}");
}

} // namespace

std::string described(CFTypeRef list) {
    const CFTypeID type = CFGetTypeID(list);
    if (type == CFStringGetTypeID()) {
        return quoted(units_of(cast<CFStringRef>(list)));
    }
    if (type == CFNumberGetTypeID()) {
        return number_text(cast<CFNumberRef>(list));
    }
    if (type == CFBooleanGetTypeID()) {
        return CFBooleanGetValue(cast<CFBooleanRef>(list)) ? "true" : "false";
    }
    if (type == CFDataGetTypeID()) {
        return "<" + to_hex(std::string(bytes_of(cast<CFDataRef>(list)))) + ">";
    }
    if (type == CFDateGetTypeID()) {
        return "date " + real_text(CFDateGetAbsoluteTime(cast<CFDateRef>(list)));
    }
    if (type == CFArrayGetTypeID()) {
        return array_text(cast<CFArrayRef>(list));
    }
    if (type == CFDictionaryGetTypeID()) {
        return dictionary_text(cast<CFDictionaryRef>(list));
    }
    if (type == CFSetGetTypeID()) {
        return set_text(cast<CFSetRef>(list));
    }
    return list == kCFNull ? "null" : uid_text(list);
}

std::string described(const Json& record) {
    const std::string& type = record["t"].get_ref<const std::string&>();
    static const Json none;
    const Json& value = record.contains("v") ? record["v"] : none;
    if (type == "string") {
        return string_text(record);
    }
    if (type == "int" || type == "real") {
        return described(make_number(record).get());
    }
    if (type == "bool") {
        return value.get<bool>() ? "true" : "false";
    }
    if (type == "data") {
        return "<" + value.get<std::string>() + ">";
    }
    if (type == "date" || type == "uid") {
        return type + " " + value.get<std::string>();
    }
    if (type == "array") {
        return joined(each_described(value), "[", "]");
    }
    if (type == "dict") {
        return dictionary_text(value);
    }
    return type == "set" ? sorted(each_described(value), "set(", ")") : type;
}

std::string read_and_describe(std::string_view bytes) {
    const auto list = list_of(bytes);
    return list ? described(list.get()) : refused;
}

std::string read_with_format(std::string_view bytes) {
    CFPropertyListFormat format{};
    const auto list = list_of(bytes, &format);
    if (!list) {
        return refused;
    }
    const char* name = format == kCFPropertyListXMLFormat_v1_0      ? "xml "
                       : format == kCFPropertyListBinaryFormat_v1_0 ? "binary "
                                                                    : "openstep ";
    return name + described(list.get());
}

Ref<CFPropertyListRef> read_list(std::string_view bytes) {
    auto list = list_of(bytes);
    EXPECT_TRUE(list);
    return list;
}

std::string written(CFPropertyListRef list) {
    const auto data = binary_form(list);
    return data ? std::string(bytes_of(data.get())) : not_written;
}

Ref<CFTypeRef> array_of(const std::vector<const void*>& items) {
    return adopt(CFArrayCreate(nullptr, const_cast<const void**>(items.data()),
                               static_cast<CFIndex>(items.size()), &kCFTypeArrayCallBacks));
}

unsigned count_of(const std::string& bytes) {
    return static_cast<unsigned char>(bytes.at(bytes.size() - 17)) +
           256u * static_cast<unsigned char>(bytes.at(bytes.size() - 18));
}

} // namespace lumo::test
