// Containers are traversed depth first; a value's path is that of its container and a key.
#include "support/state_paths.h"

#include "base/cf_values.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <set>
#include <sstream>

namespace lumo::test {
namespace {

double number_of(CFTypeRef number) {
    double value = 0;
    CFNumberGetValue(static_cast<CFNumberRef>(number), kCFNumberDoubleType, &value);
    return value;
}

std::string hexadecimal(CFDataRef data) {
    std::string text;
    for (CFIndex i = 0; i < CFDataGetLength(data); ++i) {
        const UInt8 byte = CFDataGetBytePtr(data)[i];
        text += "0123456789abcdef"[byte >> 4];
        text += "0123456789abcdef"[byte & 15];
    }
    return text;
}

StateEntry leaf(CFTypeRef value) {
    const CFTypeID type = CFGetTypeID(value);
    if (type == CFNumberGetTypeID()) {
        return number_of(value);
    }
    if (type == CFStringGetTypeID()) {
        return to_string(static_cast<CFStringRef>(value));
    }
    if (type == CFBooleanGetTypeID()) {
        return CFBooleanGetValue(static_cast<CFBooleanRef>(value)) ? "true" : "false";
    }
    if (type == CFDataGetTypeID()) {
        return hexadecimal(static_cast<CFDataRef>(value));
    }
    return "?";
}

std::string key_of_element(CFTypeRef element, CFIndex position, std::set<std::string>& taken) {
    std::string key = std::to_string(position);
    if (CFGetTypeID(element) == CFDictionaryGetTypeID()) {
        if (const CFTypeRef id = value_of(static_cast<CFDictionaryRef>(element), "ID")) {
            key = std::to_string(std::lround(number_of(id)));
        }
    }
    while (!taken.insert(key).second) {
        key += " again";
    }
    return key;
}

void add(StatePaths& paths, const std::string& path, CFTypeRef value);

void add_array(StatePaths& paths, const std::string& prefix, CFArrayRef array) {
    std::set<std::string> taken;
    for (CFIndex i = 0; i < CFArrayGetCount(array); ++i) {
        CFTypeRef element = CFArrayGetValueAtIndex(array, i);
        add(paths, prefix + key_of_element(element, i, taken), element);
    }
}

void add_dictionary(StatePaths& paths, const std::string& prefix, CFDictionaryRef dictionary) {
    for_each_entry(dictionary, [&](CFTypeRef key, CFTypeRef value) {
        add(paths, prefix + to_string(static_cast<CFStringRef>(key)), value);
    });
}

void add(StatePaths& paths, const std::string& path, CFTypeRef value) {
    const std::string prefix = path.empty() ? path : path + "/";
    const std::size_t before = paths.size();
    if (CFGetTypeID(value) == CFArrayGetTypeID()) {
        add_array(paths, prefix, static_cast<CFArrayRef>(value));
        if (paths.size() == before) {
            paths[path] = "[]";
        }
    } else if (CFGetTypeID(value) == CFDictionaryGetTypeID()) {
        add_dictionary(paths, prefix, static_cast<CFDictionaryRef>(value));
        if (paths.size() == before) {
            paths[path] = "{}";
        }
    } else {
        paths[path] = leaf(value);
    }
}

bool same(const StateEntry& a, const StateEntry& b) {
    const double* x = std::get_if<double>(&a);
    const double* y = std::get_if<double>(&b);
    if (x && y) {
        return std::abs(*x - *y) <= 1e-6 * std::max(std::abs(*x), std::abs(*y));
    }
    return a == b;
}

std::string shown(const StatePaths& paths, const std::string& path) {
    const auto found = paths.find(path);
    if (found == paths.end()) {
        return "absent";
    }
    std::ostringstream text;
    text.precision(17);
    std::visit([&](const auto& value) { text << value; }, found->second);
    return text.str();
}

} // namespace

StatePaths state_paths(CFPropertyListRef list) {
    StatePaths paths;
    add(paths, "", list);
    return paths;
}

std::vector<std::string> state_differences(const StatePaths& expected, const StatePaths& actual) {
    StatePaths all = expected;
    all.insert(actual.begin(), actual.end());
    std::vector<std::string> differences;
    for (const auto& [path, value] : all) {
        const auto a = expected.find(path);
        const auto b = actual.find(path);
        if (a == expected.end() || b == actual.end() || !same(a->second, b->second)) {
            differences.push_back(path + ": expected " + shown(expected, path) + ", is " +
                                  shown(actual, path));
        }
    }
    return differences;
}

} // namespace lumo::test
