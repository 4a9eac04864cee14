// An envelope has seven stages: a sustain with a level, and six others with a time and a curve.
// Only the amplifier's envelope can differ between the layers of an instrument.
#include "sampler/exs_envelope_state.h"

namespace lumo::platform {
namespace {

StateValue timed_stage(const StateKeys& keys, int stage, int curve, float seconds) {
    return StateDictionary()
        .integer(keys.curve, curve)
        .integer(keys.stage, stage)
        .real(keys.time, seconds)
        .make();
}

StateValue envelope_state(const StateKeys& keys, int id, const ExsEnvelope& envelope) {
    constexpr int straight = 20;
    constexpr int rounded = 22;
    constexpr float shutdown_seconds = 0.005F;
    const std::vector<StateValue> stages{
        timed_stage(keys, 0, straight, 0),
        timed_stage(keys, 1, id == 0 ? rounded : straight, envelope.attack),
        timed_stage(keys, 2, straight, 0),
        timed_stage(keys, 3, straight, envelope.decay),
        StateDictionary().real(keys.level, envelope.sustain).integer(keys.stage, 4).make(),
        timed_stage(keys, 5, straight, envelope.release),
        timed_stage(keys, 6, straight, shutdown_seconds),
    };
    return StateDictionary()
        .integer(keys.id, id)
        .boolean(keys.enabled, true)
        .set(keys.stages, state_array(stages))
        .make();
}

} // namespace

ExsEnvelopesState::ExsEnvelopesState(const StateKeys& keys, const ExsParameters& parameters) {
    const auto [amp, second] = exs_envelopes(parameters);
    amp_ = amp;
    second_state_ = envelope_state(keys, 1, second);
    unchanged_ = state_array({envelope_state(keys, 0, amp_), second_state_});
}

StateValue ExsEnvelopesState::of_layer(const StateKeys& keys, const ExsGroup* group) const {
    const ExsEnvelope amp = group ? exs_group_envelope(amp_, *group) : amp_;
    return amp == amp_ ? unchanged_ : state_array({envelope_state(keys, 0, amp), second_state_});
}

} // namespace lumo::platform
