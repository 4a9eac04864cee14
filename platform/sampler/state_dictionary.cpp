// A state with thousands of zones has tens of thousands of entries with the same few keys.
// Therefore keys are created once, and each dictionary is created with all its entries in one
// allocation.
#include "sampler/state_dictionary.h"

#include "base/cf_values.h"

#include <utility>

namespace lumo::platform {

StateValue state_integer(std::int64_t value) {
    return adopt(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &value));
}

StateValue state_real(float value) {
    return adopt(CFNumberCreate(kCFAllocatorDefault, kCFNumberFloat32Type, &value));
}

StateValue state_boolean(bool value) {
    return retain(value ? kCFBooleanTrue : kCFBooleanFalse);
}

StateValue state_text(const std::string& text) {
    StateValue made = make_string(text);
    return made ? made : state_text({});
}

StateValue state_array(const std::vector<StateValue>& values) {
    std::vector<CFTypeRef> objects;
    objects.reserve(values.size());
    for (const StateValue& value : values) {
        objects.push_back(value.get());
    }
    return adopt(CFArrayCreate(kCFAllocatorDefault, objects.data(),
                               static_cast<CFIndex>(objects.size()), &kCFTypeArrayCallBacks));
}

StateDictionary& StateDictionary::set(const StateValue& key, StateValue value) {
    keys_.at(count_) = key.get();
    values_[count_] = std::move(value);
    ++count_;
    return *this;
}

Ref<CFDictionaryRef> StateDictionary::make() const {
    std::array<CFTypeRef, max_entries> keys = keys_;
    std::array<CFTypeRef, max_entries> values{};
    for (std::size_t i = 0; i < count_; ++i) {
        values[i] = values_[i].get();
    }
    return adopt(CFDictionaryCreate(kCFAllocatorDefault, keys.data(), values.data(),
                                    static_cast<CFIndex>(count_), &kCFTypeDictionaryKeyCallBacks,
                                    &kCFTypeDictionaryValueCallBacks));
}

} // namespace lumo::platform
