#include "platform/exs_states.h"

#include "sampler/exs_reader.h"
#include "sampler/exs_state.h"

#include <cstdint>

namespace lumo::test {

Ref<CFDictionaryRef> state_of_bytes(const std::string& bytes) {
    const auto instrument =
        platform::read_exs({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
    return instrument ? platform::exs_instrument_state(*instrument,
                                                       platform::exs_layers(*instrument), "Pad.exs")
                      : Ref<CFDictionaryRef>();
}

StatePaths state_of(const ExsBuilder& builder) {
    const auto state = state_of_bytes(builder.bytes());
    return state ? state_paths(state.get()) : StatePaths();
}

StateEntry value(const StatePaths& state, const std::string& path) {
    const auto found = state.find(path);
    return found == state.end() ? absent : found->second;
}

std::vector<std::string> keys_below(const StatePaths& state, const std::string& path) {
    std::vector<std::string> keys;
    for (const auto& entry : state) {
        if (entry.first.starts_with(path + "/")) {
            keys.push_back(entry.first.substr(path.size() + 1));
        }
    }
    return keys;
}

} // namespace lumo::test
