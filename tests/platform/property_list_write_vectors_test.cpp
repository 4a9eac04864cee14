// Writing property lists, compared with recorded results of CoreFoundation.
#include "platform/number_records.h"
#include "platform/property_list_text.h"

#include <cstddef>
#include <cstdlib>
#include <set>
#include <utility>
#include <vector>

namespace lumo::test {
namespace {

using Any = Ref<CFTypeRef>;

/// A string of all of `utf8`. CoreFoundation drops one byte order mark at the start, so a text that
/// begins with a mark gets a second one.
Any text_object(const std::string& utf8) {
    const std::string mark = "\xEF\xBB\xBF";
    return make_string(utf8.starts_with(mark) ? mark + utf8 : utf8);
}

/// The text of a record's "rep": a part and its number of repetitions.
std::string repeated(const Json& repetition, bool hex) {
    const std::string text = repetition[0].get<std::string>();
    const std::string part = hex ? from_hex(text) : text;
    std::string whole;
    for (std::size_t i = 0; i < repetition[1].get<std::size_t>(); ++i) {
        whole += part;
    }
    return whole;
}

Any string_object(const Json& record) {
    if (record.contains("u16")) {
        return string_of_units(record["u16"]);
    }
    return text_object(record.contains("rep") ? repeated(record["rep"], false)
                                              : record["v"].get<std::string>());
}

Any data_object(const Json& record) {
    const std::string bytes = record.contains("rep") ? repeated(record["rep"], true)
                                                     : from_hex(record["v"].get<std::string>());
    return adopt(CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(bytes.data()),
                              static_cast<CFIndex>(bytes.size())));
}

/// A UID or a set: no public function makes them, so they are read from a binary property list with
/// these objects and this offset table.
Any object_in_binary(const std::string& objects, const std::string& table) {
    const std::string zeros(7, '\0');
    const std::string count(1, static_cast<char>(table.size()));
    const std::string end(1, static_cast<char>(8 + objects.size()));
    return read_list("bplist00" + objects + table + zeros.substr(1) + "\x01\x01" + zeros + count +
                     zeros + '\0' + zeros + end);
}

Any uid_object(const Json& record) {
    const unsigned long value = std::strtoul(record["v"].get<std::string>().c_str(), nullptr, 10);
    std::string object = "\x83";
    for (int shift = 24; shift >= 0; shift -= 8) {
        object.push_back(static_cast<char>(value >> shift & 0xFF));
    }
    return object_in_binary(object, "\x08");
}

Any date_object(const Json& record) {
    return adopt(
        CFDateCreate(nullptr, std::strtod(record["v"].get<std::string>().c_str(), nullptr)));
}

Any url_object() {
    const auto* path = reinterpret_cast<const UInt8*>("/tmp");
    return adopt(CFURLCreateFromFileSystemRepresentation(nullptr, path, 4, false));
}

Any integer_object(SInt64 value) {
    return adopt(CFNumberCreate(nullptr, kCFNumberSInt64Type, &value));
}

Any filling(const std::string& kind, SInt64 i) {
    if (kind == "string") {
        return text_object("s" + std::to_string(i));
    }
    if (kind == "true") {
        return retain(kCFBooleanTrue);
    }
    if (kind == "emptyarray") {
        return adopt(CFArrayCreate(nullptr, nullptr, 0, &kCFTypeArrayCallBacks));
    }
    return integer_object(kind == "int1000" ? 1000 + i : i);
}

Any nest(std::size_t depth) {
    Any inner = filling("emptyarray", 0);
    for (std::size_t i = 1; i < depth; ++i) {
        const void* item = inner.get();
        inner = adopt(CFArrayCreate(nullptr, &item, 1, &kCFTypeArrayCallBacks));
    }
    return inner;
}

/// Makes the objects that a record of "write" describes.
class ObjectMaker {
public:
    Any make(const Json& record) {
        if (record["t"] == "ref") {
            return retain(known_.at(record["id"].get<std::string>()));
        }
        Any object = make_new(record);
        remember(record, object.get());
        return object;
    }

private:
    Any make_new(const Json& record) {
        const std::string type = record["t"].get<std::string>();
        if (type == "bool") {
            return retain(record["v"].get<bool>() ? kCFBooleanTrue : kCFBooleanFalse);
        }
        if (type == "null") {
            return retain(kCFNull);
        }
        if (type == "int" || type == "real") {
            return make_number(record);
        }
        if (type == "array") {
            return record.contains("nest") ? nest(record["nest"].get<std::size_t>())
                                           : make_array(record);
        }
        if (type == "dict") {
            return make_dictionary(record);
        }
        if (type == "set") {
            return object_in_binary("\xC1\x01Qa", "\x08\x0A");
        }
        return type == "string" ? string_object(record)
               : type == "data" ? data_object(record)
               : type == "date" ? date_object(record)
               : type == "uid"  ? uid_object(record)
                                : url_object();
    }

    Any make_array(const Json& record) {
        std::vector<Any> items;
        for (const Json& item : record.value("v", Json::array())) {
            items.push_back(make(item));
        }
        if (record.contains("fill")) {
            for (SInt64 i = 0; i < record["fill"][1].get<SInt64>(); ++i) {
                items.push_back(filling(record["fill"][0].get<std::string>(), i));
            }
        }
        std::vector<CFTypeRef> borrowed;
        borrowed.reserve(items.size());
        for (const Any& item : items) {
            borrowed.push_back(item.get());
        }
        return array_of(borrowed);
    }

    Any make_dictionary(const Json& record) {
        const CFMutableDictionaryRef dictionary = CFDictionaryCreateMutable(
            nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
        for (const Json& entry : record["v"]) {
            const Any key =
                entry[0].is_string() ? text_object(entry[0].get<std::string>()) : make(entry[0]);
            CFDictionarySetValue(dictionary, key.get(), make(entry[1]).get());
        }
        return adopt(dictionary);
    }

    /// Borrows the object: the list that is being made keeps it alive.
    void remember(const Json& record, CFTypeRef object) {
        if (record.contains("id")) {
            known_[record["id"].get<std::string>()] = object;
        }
    }

    std::map<std::string, CFTypeRef> known_;
};

/// Cases in which equal values are stored once here and several times by CoreFoundation.
bool is_stored_once(const std::string& name) {
    static const std::set<std::string> names = {"array-fill-true-20",
                                                "array-fill-true-300",
                                                "shared-not-circular",
                                                "uid-twice",
                                                "uniq-array-empty-same-pointer",
                                                "uniq-array-same-pointer",
                                                "uniq-bool",
                                                "uniq-data-empty",
                                                "uniq-data-equal",
                                                "uniq-date-equal",
                                                "uniq-dict-same-pointer",
                                                "uniq-int-1000",
                                                "uniq-int-13",
                                                "uniq-int-big",
                                                "uniq-int-m2",
                                                "uniq-key-value-same-text",
                                                "uniq-real-equal",
                                                "uniq-real32-equal",
                                                "uniq-string-equal",
                                                "uniq-string-equal-nonascii",
                                                "uniq-two-dicts-same-key-text"};
    return names.contains(name);
}

/// Cases in which references or offsets take 3 bytes here and 4 in CoreFoundation's file.
bool has_three_byte_indices(const std::string& name) {
    static const std::set<std::string> names = {
        "array-fill-65534",   "array-fill-65535",  "array-fill-65536", "array-fill-70000",
        "data-65535",         "data-65536",        "offsets-len65536", "string-ascii-65535",
        "string-ascii-65536", "string-latin-70000"};
    return names.contains(name);
}

void compare_accepted(const std::string& name, const Json& record, CFTypeRef object,
                      ConformanceTable& table) {
    const std::string seen = written(object);
    const std::string wanted = vector_bytes(record["output"]);
    EXPECT_EQ(wanted.size(), record["size"].get<std::size_t>()) << name;
    if (seen == wanted) {
        table.compare("write", true, name);
    } else if (seen.size() > wanted.size()) {
        table.compare("write", false, name + " is larger");
    } else if (read_with_format(seen) != "binary " + described(object)) {
        table.compare("write", false, name + " reads back otherwise");
    } else if (record.value("hash_order", false)) {
        table.differs_on_purpose("write", "dictionary entries come in the order of their keys");
    } else if (is_stored_once(name)) {
        table.differs_on_purpose("write", "equal values are stored once");
    } else if (has_three_byte_indices(name)) {
        table.differs_on_purpose("write", "references and offsets may take 3 bytes");
    } else if (!is_own_core_foundation) {
        // A Mac's CoreFoundation stores small integers once; the recorded library does not.
        table.differs_on_purpose("write", "the system's library shares more");
    } else {
        table.compare("write", false, name + " has other bytes");
    }
}

void compare_writing(const Json& record, ConformanceTable& table) {
    if (record.contains("crash")) {
        return;
    }
    const std::string name = record["name"].get<std::string>();
    if (name == "bad-circular-array") {
        table.not_offered("refuse to write", "mutable arrays");
        return;
    }
    const Any object = ObjectMaker{}.make(record["input"]);
    if (record["accepted"].get<bool>()) {
        compare_accepted(name, record, object.get(), table);
    } else {
        table.compare("refuse to write", written(object.get()) == not_written,
                      name + " was written");
    }
}

} // namespace

TEST(PropertyListWriteVectors, AreWrittenLikeTheRecordedResults) {
    ConformanceTable table;
    for (const Json& record : read_vectors("write.json")) {
        compare_writing(record, table);
    }
    table.print("writing property lists");
    EXPECT_EQ(table.differing(), 0u);
    EXPECT_GE(table.equal(), is_own_core_foundation ? 141u : 8u);
}

TEST(PropertyListWriteVectors, MayReferToADictionaryAgain) {
    const Json record = Json::parse(R"({"t":"array","v":[
        {"t":"dict","v":[["a",{"t":"int","v":"1"}]],"id":"x"},{"t":"ref","id":"x"}]})");
    const Any list = ObjectMaker{}.make(record);
    const auto* array = static_cast<CFArrayRef>(list.get());
    EXPECT_EQ(described(array), R"([{"a": 1}, {"a": 1}])");
    EXPECT_EQ(CFArrayGetValueAtIndex(array, 0), CFArrayGetValueAtIndex(array, 1));
}

TEST(PropertyListWriteVectors, TextKeepsAMarkAtItsStart) {
    const Any text = ObjectMaker{}.make(Json::parse(R"({"t":"string","v":"\ufeffa"})"));
    EXPECT_EQ(described(text.get()), "\"\\feffa\"");
}

} // namespace lumo::test
