// Property lists as expressions: dictionary({{"Layers", array({...})}, {"gain", real(0)}}).
#pragma once

#include "support/plist_io.h"

#include <string>
#include <utility>
#include <vector>

namespace lumo::test {

/// A CoreFoundation object.
using Value = Ref<CFTypeRef>;
using lumo::adopt;
using lumo::retain;

/// Objects of these values; `text` is null when the bytes are not UTF-8.
Value text(const std::string& utf8);
Value whole(int number);
Value real(double number);
Value boolean(bool value);
Value data(const std::string& bytes);
Value array(const std::vector<Value>& values);
Value dictionary(const std::vector<std::pair<std::string, Value>>& entries);

/// A dictionary with one value of each kind, under the name of its kind. "text" is `path`; the
/// array, the data and the dictionary contain it too.
Value values_of_every_kind(const std::string& path);

/// The value for `key` in a dictionary, retained; null when there is none.
Value entry(const Value& dictionary, const char* key);

/// The value as a dictionary.
inline CFDictionaryRef as_dictionary(const Value& value) {
    return static_cast<CFDictionaryRef>(value.get());
}

} // namespace lumo::test
