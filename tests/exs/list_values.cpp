// Objects are made with the public functions of CoreFoundation.
#include "list_values.h"

#include "base/cf_values.h"

namespace lumo::test {

Value text(const std::string& utf8) {
    return make_string(utf8);
}

Value whole(int number) {
    return adopt(CFNumberCreate(kCFAllocatorDefault, kCFNumberIntType, &number));
}

Value real(double number) {
    return adopt(CFNumberCreate(kCFAllocatorDefault, kCFNumberDoubleType, &number));
}

Value boolean(bool value) {
    return retain(value ? kCFBooleanTrue : kCFBooleanFalse);
}

Value data(const std::string& bytes) {
    return data_of(bytes);
}

Value array(const std::vector<Value>& values) {
    std::vector<CFTypeRef> objects;
    objects.reserve(values.size());
    for (const Value& value : values) {
        objects.push_back(value.get());
    }
    return adopt(CFArrayCreate(kCFAllocatorDefault, objects.data(),
                               static_cast<CFIndex>(objects.size()), &kCFTypeArrayCallBacks));
}

Value dictionary(const std::vector<std::pair<std::string, Value>>& entries) {
    const CFMutableDictionaryRef result = CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    for (const auto& [key, value] : entries) {
        CFDictionarySetValue(result, text(key).get(), value.get());
    }
    return adopt(result);
}

Value values_of_every_kind(const std::string& path) {
    return dictionary({{"array", array({text(path)})},
                       {"boolean", boolean(true)},
                       {"data", data(path)},
                       {"date", adopt(CFDateCreate(kCFAllocatorDefault, 0))},
                       {"dictionary", dictionary({{"path", text(path)}})},
                       {"real", real(0.5)},
                       {"text", text(path)},
                       {"whole", whole(1)}});
}

Value entry(const Value& dictionary, const char* key) {
    return retain(CFDictionaryGetValue(as_dictionary(dictionary), text(key).get()));
}

} // namespace lumo::test
