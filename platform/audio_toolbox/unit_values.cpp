// Reading and writing use the same tables of keys.
#include "audio_toolbox/unit_values.h"

#include "base/cf_values.h"
#include "sampler/state_dictionary.h"

#include <array>
#include <utility>

namespace lumo::platform {
namespace {

constexpr std::array<std::pair<const char*, float UnitValues::*>, 3> reals{{
    {"gain", &UnitValues::gain},
    {"fine tune", &UnitValues::fine_tune},
    {"pan", &UnitValues::pan},
}};

constexpr std::array<std::pair<const char*, SInt32 UnitValues::*>, 3> integers{{
    {"coarse tune", &UnitValues::coarse_tune},
    {"output", &UnitValues::output},
    {"voice count", &UnitValues::voice_count},
}};

template <class T>
void read(CFDictionaryRef list, const char* key, CFNumberType type, T& number) {
    if (const auto value = value_of<CFNumberRef>(list, key)) {
        CFNumberGetValue(value, type, &number);
    }
}

void set(CFMutableDictionaryRef info, const char* key, const StateValue& value) {
    CFDictionarySetValue(info, state_text(key).get(), value.get());
}

} // namespace

UnitValues read_unit_values(CFDictionaryRef list) {
    UnitValues values;
    for (const auto& [key, field] : reals) {
        read(list, key, kCFNumberFloat32Type, values.*field);
    }
    for (const auto& [key, field] : integers) {
        read(list, key, kCFNumberSInt32Type, values.*field);
    }
    return values;
}

void set_unit_values(CFMutableDictionaryRef info, const UnitValues& values) {
    for (const auto& [key, field] : reals) {
        set(info, key, state_real(values.*field));
    }
    for (const auto& [key, field] : integers) {
        set(info, key, state_integer(values.*field));
    }
}

} // namespace lumo::platform
