// Creates the dictionaries of a sampler state.
#pragma once

#include "base/ref.h"

#include <CoreFoundation/CoreFoundation.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace lumo::platform {

/// A value of a state. It can be shared by several containers.
using StateValue = Ref<CFTypeRef>;

/// A 64-bit integer.
StateValue state_integer(std::int64_t value);
/// A real of single precision, the sampler's own precision.
StateValue state_real(float value);
/// A boolean.
StateValue state_boolean(bool value);
/// A string from UTF-8; an empty string when `text` is not valid UTF-8.
StateValue state_text(const std::string& text);
/// An array of these values, which it retains.
StateValue state_array(const std::vector<StateValue>& values);

/// The keys of the dictionaries, each created once per state.
struct StateKeys {
    StateValue amplifier = state_text("Amplifier");
    StateValue coarse_tune = state_text("coarse tune");
    StateValue connections = state_text("Connections");
    StateValue control = state_text("control");
    StateValue curve = state_text("curve");
    StateValue cutoff = state_text("cutoff");
    StateValue delay = state_text("delay");
    StateValue destination = state_text("destination");
    StateValue enabled = state_text("enabled");
    StateValue envelopes = state_text("Envelopes");
    StateValue filters = state_text("Filters");
    StateValue fine_tune = state_text("fine tune");
    StateValue gain = state_text("gain");
    StateValue id = state_text("ID");
    StateValue inverse = state_text("inverse");
    StateValue layers = state_text("Layers");
    StateValue level = state_text("level");
    StateValue lfos = state_text("LFOs");
    StateValue loop_enabled = state_text("loop enabled");
    StateValue loop_end = state_text("loop end");
    StateValue loop_start = state_text("loop start");
    StateValue max_key = state_text("max key");
    StateValue max_value = state_text("max value");
    StateValue max_velocity = state_text("max vel");
    StateValue min_key = state_text("min key");
    StateValue min_value = state_text("min value");
    StateValue min_velocity = state_text("min vel");
    StateValue name = state_text("name");
    StateValue oscillator = state_text("Oscillator");
    StateValue pan = state_text("pan");
    StateValue pitch_tracking = state_text("pitch tracking");
    StateValue rate = state_text("rate");
    StateValue resonance = state_text("resonance");
    StateValue root_key = state_text("root key");
    StateValue sample_end = state_text("sample end");
    StateValue sample_start = state_text("sample start");
    StateValue scale = state_text("scale");
    StateValue selecting_controller = state_text("sel ctrlr");
    StateValue selecting_max = state_text("sel ctrlr max val");
    StateValue selecting_min = state_text("sel ctrlr min val");
    StateValue source = state_text("source");
    StateValue stage = state_text("stage");
    StateValue stages = state_text("Stages");
    StateValue time = state_text("time");
    StateValue transform = state_text("transform");
    StateValue trigger_mode = state_text("trigger mode");
    StateValue voice_count = state_text("voice count");
    StateValue waveform = state_text("waveform");
    StateValue zones = state_text("Zones");
};

/// Collects up to `max_entries` entries with different keys, then creates a dictionary of exactly
/// these.
class StateDictionary {
public:
    static constexpr std::size_t max_entries = 24;

    /// Adds an entry. The key is borrowed until `make`. Throws std::out_of_range beyond
    /// `max_entries`.
    StateDictionary& set(const StateValue& key, StateValue value);
    StateDictionary& integer(const StateValue& key, std::int64_t value) {
        return set(key, state_integer(value));
    }
    StateDictionary& real(const StateValue& key, float value) {
        return set(key, state_real(value));
    }
    StateDictionary& boolean(const StateValue& key, bool value) {
        return set(key, state_boolean(value));
    }
    StateDictionary& text(const StateValue& key, const std::string& value) {
        return set(key, state_text(value));
    }
    /// Creates a dictionary of the entries so far.
    Ref<CFDictionaryRef> make() const;

private:
    std::array<CFTypeRef, max_entries> keys_{};
    std::array<StateValue, max_entries> values_;
    std::size_t count_ = 0;
};

} // namespace lumo::platform
