// platform/sampler/exs_chunk.cpp describes the chunks, docs/exs24-format.md their fields.
#include "support/exs_builder.h"

#include <algorithm>

namespace lumo::test {
namespace {

constexpr std::size_t header_size = 84;

} // namespace

class ExsBuilder::Content {
public:
    Content(const ExsBuilder& builder, std::size_t size) : builder_(builder), bytes_(size, '\0') {}

    /// `offset` is relative to the start of the chunk's header.
    Content& text(std::size_t offset, std::string_view text) {
        const std::size_t at = offset - header_size;
        if (at + text.size() <= bytes_.size()) {
            bytes_.replace(at, text.size(), text);
        }
        return *this;
    }
    Content& byte(std::size_t offset, int value) {
        return text(offset, builder_.number(static_cast<std::uint32_t>(value), 1));
    }
    Content& word(std::size_t offset, std::int64_t value) {
        return text(offset, builder_.number(static_cast<std::uint32_t>(value), 4));
    }
    Content& half(std::size_t offset, int value) {
        return text(offset, builder_.number(static_cast<std::uint32_t>(value), 2));
    }
    const std::string& bytes() const { return bytes_; }

private:
    const ExsBuilder& builder_;
    std::string bytes_;
};

std::string ExsBuilder::number(std::uint32_t value, std::size_t width) const {
    std::string bytes;
    for (std::size_t i = 0; i < width; ++i) {
        bytes += static_cast<char>(value >> (8 * i) & 0xFF);
    }
    if (big_endian()) {
        std::ranges::reverse(bytes);
    }
    return bytes;
}

std::string ExsBuilder::framed(int type, std::string_view content, std::string_view name) const {
    const bool short_size = (layout_.flags & 0x80) != 0;
    const auto size = static_cast<std::uint32_t>(content.size() | (short_size ? 0x8000U : 0U));
    std::string bytes{big_endian() ? '\0' : '\1', '\1', '\0',
                      static_cast<char>(type | layout_.flags)};
    bytes += number(size, 4) + number(0, 4) + number(0, 4);
    bytes += layout_.magic;
    bytes += name.substr(0, 64);
    bytes.resize(header_size);
    return bytes.append(content);
}

ExsBuilder& ExsBuilder::chunk(int type, std::string_view content, std::string_view name) {
    ++counts_.at(static_cast<std::size_t>(type) & 0xF);
    chunks_ += framed(type, content, name);
    return *this;
}

ExsBuilder& ExsBuilder::zone(const ExsZoneFields& fields) {
    Content content(*this, layout_.zone);
    content.byte(84, fields.options).byte(85, fields.root_key).byte(86, fields.fine_tune);
    content.byte(87, fields.pan).byte(88, fields.volume);
    content.byte(90, fields.low_key).byte(91, fields.high_key);
    content.byte(93, fields.low_velocity).byte(94, fields.high_velocity);
    content.word(96, fields.sample_start).word(100, fields.sample_end);
    content.word(104, fields.loop_start).word(108, fields.loop_end);
    content.byte(117, fields.loop_options).byte(164, fields.coarse_tune);
    content.word(172, fields.group).word(176, fields.sample);
    return chunk(1, content.bytes(), fields.name);
}

ExsBuilder& ExsBuilder::group(const ExsGroupFields& fields) {
    Content content(*this, layout_.group);
    content.byte(84, fields.volume).byte(85, fields.pan).byte(87, fields.options);
    content.byte(89, fields.low_velocity).byte(90, fields.high_velocity);
    content.word(100, fields.release_decay).word(140, fields.attack_offset);
    content.byte(157, fields.trigger).word(164, -1);
    content.byte(168, fields.chosen_by[0]).byte(169, fields.controller);
    content.byte(170, fields.low_value).byte(171, fields.high_value);
    content.byte(172, fields.low_key).byte(173, fields.high_key);
    content.byte(176, fields.chosen_by[1]).byte(177, fields.chosen_by[2]);
    return chunk(2, content.bytes(), fields.name);
}

ExsBuilder& ExsBuilder::sample(const ExsSampleFields& fields) {
    Content content(*this, layout_.sample);
    content.word(88, fields.frames).word(92, 44100).word(96, 16).word(100, 1);
    content.text(164, fields.directory).text(420, fields.name);
    return chunk(3, content.bytes(), fields.chunk_name.value_or(fields.name));
}

ExsBuilder& ExsBuilder::parameters(const ExsParameterList& first, const ExsParameterList& second,
                                   std::optional<std::uint32_t> pair_count) {
    constexpr std::size_t places = 100;
    Content content(*this, layout_.parameters);
    content.word(84, places);
    for (std::size_t i = 0; i < first.size(); ++i) {
        content.byte(88 + i, first[i].first).half(88 + places + 2 * i, first[i].second);
    }
    constexpr std::size_t pairs = 88 + 3 * places;
    content.word(pairs, pair_count.value_or(static_cast<std::uint32_t>(second.size())));
    for (std::size_t i = 0; i < second.size(); ++i) {
        content.half(pairs + 4 + 4 * i, second[i].first);
        content.half(pairs + 6 + 4 * i, second[i].second);
    }
    return chunk(4, content.bytes(), "Default Param");
}

std::string ExsBuilder::bytes() const {
    Content content(*this, layout_.instrument);
    for (std::size_t type = 1; type < counts_.size(); ++type) {
        content.word(header_size + 4 * type, counts_[type]);
    }
    return framed(0, content.bytes(), "Instrument") + chunks_;
}

} // namespace lumo::test
