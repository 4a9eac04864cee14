#include "audio_toolbox/typed_value.h"

#include "sampler/state_dictionary.h"

namespace lumo::platform {

CFTypeRef value_of_type(CFDictionaryRef dictionary, const char* key, CFTypeID type) {
    const CFTypeRef value = CFDictionaryGetValue(dictionary, state_text(key).get());
    return value && CFGetTypeID(value) == type ? value : nullptr;
}

} // namespace lumo::platform
