// Writes EXS24 files of every generation, for tests. Fields beyond the size of the layout's chunks
// are omitted.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lumo::test {

/// The chunk layout of one generation of the sampler; sizes are content sizes in bytes.
struct ExsLayout {
    std::string_view name = "10";
    std::string_view magic = "TBOS"; ///< "SOBT" and "SOBJ" are big-endian
    std::uint8_t flags = 0;          ///< set above the type: 0x40, 0x80 (15-bit sizes)
    std::size_t instrument = 80;
    std::size_t zone = 136;
    std::size_t group = 132;
    std::size_t sample = 592;
    std::size_t parameters = 388;
};

/// Prints a layout as the parameter of a test, in GoogleTest's form.
inline void PrintTo(const ExsLayout& layout, std::ostream* out) {
    *out << layout.name;
}

/// At least one layout with each generation, byte order, magic and flag.
inline constexpr std::array exs_layouts{
    ExsLayout{"big-endian", "SOBT", 0x80, 40, 104, 96, 336, 304},
    ExsLayout{"monolith", "SOBJ", 0x80, 40, 104, 92, 336, 304},
    ExsLayout{"little-monolith", "JBOS", 0x80, 40, 104, 96, 336, 304},
    ExsLayout{"old", "TBOS", 0, 40, 108, 120, 592, 304},
    ExsLayout{"old-longer-zones", "TBOS", 0, 40, 128, 120, 592, 304},
    ExsLayout{"longer-groups", "TBOS", 0, 80, 132, 124, 592, 388},
    ExsLayout{},
    ExsLayout{"10.1", "TBOS", 0, 80, 140, 132, 592, 1108},
    ExsLayout{"10.5", "TBOS", 0, 88, 148, 140, 600, 1108},
    ExsLayout{"flagged", "TBOS", 0x40, 88, 148, 144, 600, 1108},
    ExsLayout{"longer-than-any", "TBOS", 0, 200, 300, 400, 1624, 2000},
};

/// The fields of a zone's chunk; ranges and units are those of ExsZone.
struct ExsZoneFields {
    std::string name = "Zone #1";
    int options = 0; ///< 2: pitch tracking off, 8: velocity range on, 16: mute
    int root_key = 60;
    int fine_tune = 0;
    int volume = 0;
    int low_key = 0;
    int high_key = 127;
    int low_velocity = 0;
    int high_velocity = 127;
    std::int32_t sample_start = 0;
    std::int32_t sample_end = 1000;
    std::int32_t loop_start = 0;
    std::int32_t loop_end = 1000;
    int loop_options = 0; ///< 1: on
    int coarse_tune = 0;
    int pan = 0;
    std::int32_t group = -1;
    std::int32_t sample = 0;
};

/// The fields of a group's chunk.
struct ExsGroupFields {
    std::string name = "Group 1";
    int volume = 0;
    int pan = 0;
    int options = 0; ///< 16: mute, 64: release decay on
    int low_velocity = 0;
    int high_velocity = 127;
    int low_key = 0;
    int high_key = 127;
    std::int64_t release_decay = 0;        ///< ms
    std::int32_t attack_offset = 0;        ///< ms
    int trigger = 0;                       ///< 1: on release
    std::array<int, 3> chosen_by{0, 0, 0}; ///< 3: by the controller
    int controller = 0;
    int low_value = 0; ///< of the controller
    int high_value = 127;
};

/// The fields of a sample's chunk.
struct ExsSampleFields {
    std::string directory = "/Users/ada/Sounds";
    std::string name = "kick.wav";
    std::optional<std::string> chunk_name = {}; ///< of the chunk itself, if other than `name`
    std::uint32_t frames = 1000;
};

/// Numbers and values of parameters.
using ExsParameterList = std::vector<std::pair<int, int>>;

/// Collects chunks and builds a file of them.
class ExsBuilder {
public:
    explicit ExsBuilder(const ExsLayout& layout = {}) : layout_(layout) {}

    /// Each appends one chunk.
    ExsBuilder& zone(const ExsZoneFields& fields);
    ExsBuilder& group(const ExsGroupFields& fields);
    ExsBuilder& sample(const ExsSampleFields& fields);
    /// `first` goes into the table of 100 entries, `second` into the pairs after it, whose count is
    /// written as `pair_count` (default: the size of `second`).
    ExsBuilder& parameters(const ExsParameterList& first, const ExsParameterList& second = {},
                           std::optional<std::uint32_t> pair_count = std::nullopt);
    /// Appends a chunk of any type.
    ExsBuilder& chunk(int type, std::string_view content, std::string_view name = {});

    /// The file: an instrument chunk, then the others in the order in which they were added.
    std::string bytes() const;
    /// The same without the instrument chunk.
    std::string chunks() const { return chunks_; }

private:
    /// The content of a chunk, initially zero; fields that do not fit are omitted.
    class Content;

    bool big_endian() const { return layout_.magic.starts_with("SOB"); }
    std::string number(std::uint32_t value, std::size_t width) const;
    std::string framed(int type, std::string_view content, std::string_view name) const;

    ExsLayout layout_;
    std::array<std::uint32_t, 16> counts_{};
    std::string chunks_;
};

} // namespace lumo::test
