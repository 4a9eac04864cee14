// An EXS24 file is a sequence of chunks without a file header or end mark: one for the instrument,
// one for each zone, group and sample, at most one for the parameters, and in newer files some that
// only an editor needs, which are skipped. Zones refer to their group and sample by index among the
// chunks of that type, wherever those are in the file.
//
// No field has the version. The generations differ in the size of their chunks, and longer chunks
// only append to shorter ones, so each field is read if the chunk contains it, and else has its
// default.
#include "sampler/exs_reader.h"

#include "sampler/exs_chunk.h"
#include "sampler/exs_text.h"

#include <algorithm>
#include <utility>

namespace lumo::platform {
namespace {

/// Limits a byte to the range of MIDI keys and velocities.
int midi(std::uint8_t value) {
    return std::min<int>(value, 127);
}

/// Limits the pan to full left and full right.
int pan(std::int8_t percent) {
    return std::clamp<int>(percent, -100, 100);
}

ExsZone read_zone(const ExsChunk& chunk) {
    enum : unsigned { pitch_tracking_off = 2, velocity_range_on = 8, mute = 16 };
    const unsigned options = chunk.u8(84);
    ExsZone zone{
        .name = chunk.name(),
        .root_key = midi(chunk.u8(85, 60)),
        .coarse_tune = chunk.s8(164),
        .fine_tune = chunk.s8(86),
        .volume = chunk.s8(88),
        .pan = pan(chunk.s8(87)),
        .keys = {midi(chunk.u8(90)), midi(chunk.u8(91, 127))},
        .velocities = {},
        .pitch_tracking = (options & pitch_tracking_off) == 0,
        .muted = (options & mute) != 0,
        .loop_on = (chunk.u8(117) & 1) != 0,
        .sample_start = chunk.s32(96),
        .sample_end = chunk.s32(100),
        .loop_start = chunk.s32(104),
        .loop_end = chunk.s32(108),
        .group = chunk.s32(172, -1),
        .sample = chunk.s32(176, -1),
    };
    if ((options & velocity_range_on) != 0) {
        zone.velocities = {midi(chunk.u8(93)), midi(chunk.u8(94, 127))};
    }
    return zone;
}

/// A group has three fields for a condition that selects it, but only one controller.
std::optional<ExsSelection> read_selection(const ExsChunk& chunk) {
    constexpr std::uint8_t by_controller = 3;
    for (const std::size_t condition : {168U, 176U, 177U}) {
        if (chunk.u8(condition) == by_controller) {
            return ExsSelection{.controller = midi(chunk.u8(169)),
                                .values = {midi(chunk.u8(170)), midi(chunk.u8(171, 127))}};
        }
    }
    return std::nullopt;
}

std::optional<std::uint32_t> read_release_decay(const ExsChunk& chunk, bool is_on) {
    constexpr std::size_t offset = 100;
    return is_on && chunk.holds(offset, 4) ? std::optional(chunk.u32(offset)) : std::nullopt;
}

ExsGroup read_group(const ExsChunk& chunk) {
    enum : unsigned { mute = 16, release_decay_on = 64 };
    const unsigned options = chunk.u8(87);
    return {
        .name = chunk.name(),
        .volume = chunk.s8(84),
        .pan = pan(chunk.s8(85)),
        .keys = {midi(chunk.u8(172)), midi(chunk.u8(173, 127))},
        .velocities = {midi(chunk.u8(89)), midi(chunk.u8(90, 127))},
        .muted = (options & mute) != 0,
        .on_release = (chunk.u8(157) & 1) != 0,
        .release_decay = read_release_decay(chunk, (options & release_decay_on) != 0),
        .attack_offset = chunk.s32(140),
        .selection = read_selection(chunk),
    };
}

/// The chunk's own name is used last: old systems truncated it to 31 characters.
ExsSample read_sample(const ExsChunk& chunk) {
    constexpr std::size_t text_room = 256;
    std::string name = chunk.text(420, text_room);
    if (name.empty()) {
        name = chunk.name();
    }
    return {.path = exs_path(chunk.text(164, text_room), name), .frames = chunk.u32(88)};
}

/// Reads two consecutive tables: `count` IDs of one byte and `count` values, then pairs of an ID
/// and a value. The count of the pairs is wrong in many files, so they are read to the end of the
/// chunk; ID 0 is an unused entry in both. False when the first table exceeds the chunk.
bool read_parameters(const ExsChunk& chunk, ExsParameters& parameters) {
    constexpr std::size_t ids = ExsChunk::header_size + 4;
    const std::size_t count = chunk.u32(ExsChunk::header_size);
    if (count > (chunk.size() - std::min(ids, chunk.size())) / 3) {
        return false;
    }
    const std::size_t values = ids + count;
    for (std::size_t i = 0; i < count; ++i) {
        parameters.set(chunk.u8(ids + i), static_cast<std::int16_t>(chunk.u16(values + 2 * i)));
    }
    const std::size_t pairs = values + 2 * count + 4;
    for (std::size_t at = pairs; at + 4 <= chunk.size(); at += 4) {
        parameters.set(chunk.u16(at), static_cast<std::int16_t>(chunk.u16(at + 2)));
    }
    return true;
}

bool read_chunk(const ExsChunk& chunk, ExsInstrument& instrument) {
    switch (chunk.type()) {
    case ExsChunk::zone:
        instrument.zones.push_back(read_zone(chunk));
        return true;
    case ExsChunk::group:
        instrument.groups.push_back(read_group(chunk));
        return true;
    case ExsChunk::sample:
        instrument.samples.push_back(read_sample(chunk));
        return true;
    case ExsChunk::parameters:
        return read_parameters(chunk, instrument.parameters);
    default:
        return true;
    }
}

} // namespace

std::optional<ExsInstrument> read_exs(std::span<const std::uint8_t> file) {
    ExsInstrument instrument;
    bool complete = false;
    while (!file.empty()) {
        const std::optional<ExsChunk> chunk = ExsChunk::first_of(file);
        if (!chunk || !read_chunk(*chunk, instrument)) {
            return std::nullopt;
        }
        complete = complete || chunk->type() == ExsChunk::instrument;
        file = file.subspan(chunk->size());
    }
    return complete ? std::optional(std::move(instrument)) : std::nullopt;
}

} // namespace lumo::platform
