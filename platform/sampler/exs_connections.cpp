// Every layer has six fixed connections with the IDs 0 to 5. From 6 on, IDs are assigned in this
// order: volume by key, pitch bend, attack by velocity, the slots of the matrix, cutoff by key.
//
// They are written in another order: first those that modulate an LFO or an envelope, so that these
// are set before they modulate anything, then those from keyboard and MIDI, then those from the
// layer's LFO and from its envelopes.
#include "sampler/exs_connections.h"

#include "sampler/exs_formulas.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace lumo::platform {
namespace {

/// Converts -1000..1000 to the sampler's units; the factors are in the sampler's own order, which
/// determines rounding.
float per_mille(int amount, float full) {
    return static_cast<float>(amount) * 0.001F * full;
}

ExsConnection scaled(std::uint32_t source, std::uint32_t destination, float scale) {
    return {.source = source, .destination = destination, .high = scale};
}

ExsConnection ranged(std::uint32_t source, std::uint32_t destination, float low, float high) {
    ExsConnection connection = scaled(source, destination, high);
    connection.has_range = true;
    connection.low = low;
    return connection;
}

/// Changes the gain by `scale` dB (0 or less) where the source is lowest.
ExsConnection attenuation(std::uint32_t source, float scale,
                          ExsConnection::Transform transform = ExsConnection::concave) {
    ExsConnection connection = scaled(source, code::gain, scale);
    connection.transform = transform;
    connection.inverse = true;
    return connection;
}

std::vector<ExsConnection> fixed_connections(const ExsParameters& parameters) {
    const int velocity = parameters.value(ExsParameter::level_by_velocity);
    return {
        scaled(code::key, code::pitch, 12800),
        attenuation(code::velocity, static_cast<float>(velocity)),
        attenuation(code::volume_controller, -96),
        attenuation(code::expression_controller, -96),
        ranged(code::pan_controller, code::pan, -0.508F, 0.508F),
        attenuation(code::envelope_1, -96, ExsConnection::linear),
    };
}

std::optional<ExsConnection> volume_by_key(const ExsParameters& parameters) {
    const int decibels = parameters.value(ExsParameter::volume_key_scale);
    if (decibels == 0) {
        return std::nullopt;
    }
    return ranged(code::key, code::gain, static_cast<float>(-decibels),
                  static_cast<float>(decibels));
}

ExsConnection pitch_by_bend(const ExsParameters& parameters) {
    const int up = parameters.value(ExsParameter::bend_up);
    const int down = parameters.value(ExsParameter::bend_down);
    return ranged(code::pitch_bend, code::pitch, static_cast<float>(-100 * (down < 0 ? up : down)),
                  static_cast<float>(100 * up));
}

/// The attack is given for the loudest and the softest note. It is converted to octaves, so both
/// times must be above 0.
std::optional<ExsConnection> attack_by_velocity(const ExsParameters& parameters) {
    const int loud = parameters.value(ExsParameter::amp_attack);
    const int soft = parameters.value(ExsParameter::amp_attack_soft);
    if (loud == soft || loud == 0 || soft == 0) {
        return std::nullopt;
    }
    const float ratio = static_cast<float>(loud) / static_cast<float>(soft);
    return scaled(code::velocity, code::envelope_1_attack, 4 * std::log2(ratio));
}

std::optional<ExsConnection> cutoff_by_key(const ExsParameters& parameters) {
    const int amount = parameters.value(ExsParameter::filter_key_track);
    if (amount == 0) {
        return std::nullopt;
    }
    return scaled(code::key, code::cutoff, per_mille(amount, 12000));
}

/// The LFO's code; nothing when the LFO is not running, since the state then does not contain it.
std::optional<std::uint32_t> running_lfo(const ExsParameters& parameters, ExsParameter rate,
                                         std::uint32_t lfo) {
    return exs_lfo_rate(parameters.value(rate)) ? std::optional(lfo) : std::nullopt;
}

/// The sampler's code of a source (or via) of the matrix; nothing when it has no such source.
std::optional<std::uint32_t> source_code(int source, const ExsParameters& parameters) {
    switch (source) {
    case -3:
        return code::velocity;
    case -4:
        return code::key;
    case -5:
        return code::pitch_bend;
    case -10:
        return running_lfo(parameters, ExsParameter::lfo_3_rate, code::instrument_lfo_2);
    case -11:
        return running_lfo(parameters, ExsParameter::lfo_2_rate, code::instrument_lfo_1);
    case -12:
        return running_lfo(parameters, ExsParameter::lfo_1_rate, code::layer_lfo);
    case -13:
        return code::envelope_1;
    case -14:
        return code::envelope_2;
    default:
        return source > 0 && source < 128 ? std::optional(static_cast<std::uint32_t>(source))
                                          : std::nullopt;
    }
}

struct Destination {
    std::uint32_t code;
    float (*amount)(int); ///< from the matrix's units to the sampler's
};

/// Up to one octave, with the finest resolution near 0.
float pitch_amount(int amount) {
    const float part = static_cast<float>(amount) / 1000.0F;
    return std::copysign(1200.0F * (part * part * part * part), part);
}

std::optional<Destination> destination_of(int destination) {
    switch (destination) {
    case 6:
        return Destination{code::pitch, pitch_amount};
    case 8:
        return Destination{code::cutoff, [](int amount) { return per_mille(amount, 12000); }};
    case 9:
        return Destination{code::resonance, [](int amount) { return per_mille(amount, 40); }};
    case 16:
        return Destination{code::layer_lfo_rate, [](int amount) { return per_mille(amount, 2); }};
    default:
        return std::nullopt;
    }
}

std::optional<ExsConnection> slot_connection(ExsModulation slot, const ExsParameters& parameters) {
    const auto destination = destination_of(slot.destination);
    const auto source = source_code(slot.source, parameters);
    const bool has_via = slot.via != 0 && slot.via != -1;
    const auto via = has_via ? source_code(slot.via, parameters) : std::uint32_t{code::none};
    if (!destination || !source || !via) {
        return std::nullopt;
    }
    const int low = has_via ? slot.low : slot.high;
    if (*source == code::velocity && low == 0 && slot.high == 0) {
        return std::nullopt;
    }
    ExsConnection connection = scaled(*source, destination->code, destination->amount(slot.high));
    connection.inverse = slot.inverted;
    if (low != slot.high) {
        connection.control = *via;
        connection.has_range = low != 0;
        connection.low = destination->amount(low);
    }
    return connection;
}

/// The rank of a connection in the written order.
std::uint32_t written_rank(const ExsConnection& connection) {
    if (connection.destination < code::pitch) {
        return 0;
    }
    return connection.source < code::of_layer ? 1 : connection.source;
}

} // namespace

std::vector<ExsConnection> exs_connections(const ExsParameters& parameters) {
    std::vector<ExsConnection> connections = fixed_connections(parameters);
    const auto add = [&](const std::optional<ExsConnection>& connection) {
        if (connection) {
            connections.push_back(*connection);
        }
    };
    add(volume_by_key(parameters));
    add(pitch_by_bend(parameters));
    add(attack_by_velocity(parameters));
    for (int slot = 0; slot < ExsParameters::slot_count; ++slot) {
        add(slot_connection(parameters.modulation(slot), parameters));
    }
    add(cutoff_by_key(parameters));
    for (std::size_t i = 0; i < connections.size(); ++i) {
        connections[i].id = static_cast<int>(i);
    }
    std::ranges::stable_sort(connections, {}, written_rank);
    return connections;
}

} // namespace lumo::platform
