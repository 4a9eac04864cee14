// Writes the seeds of fuzz_exs_reader: make_exs_seeds FOLDER. One small instrument in each layout
// of the format, with a value in every field that is read.
#include "support/exs_builder.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

using lumo::test::ExsBuilder;
using lumo::test::ExsLayout;

namespace {

std::string instrument(const ExsLayout& layout) {
    return ExsBuilder(layout)
        .zone({.name = "Fl\x9Ate",
               .options = 8,
               .volume = -9,
               .high_key = 51,
               .high_velocity = 99,
               .sample_start = 10,
               .sample_end = 950,
               .loop_start = 20,
               .loop_end = 900,
               .loop_options = 1,
               .coarse_tune = -18,
               .pan = 30,
               .group = 0})
        .zone({.name = "Fl\xC3\xB6te", .options = 2, .fine_tune = 7, .low_key = 40, .sample = 1})
        .group({.volume = -3,
                .pan = -60,
                .options = 64,
                .low_velocity = 20,
                .high_key = 60,
                .release_decay = 500,
                .attack_offset = -25,
                .trigger = 1,
                .chosen_by = {2, 3, 0},
                .controller = 4,
                .low_value = 64,
                .high_value = 127})
        .sample({.directory = "Macintosh HD:Sounds:", .name = "kick.wav"})
        .sample({.name = "a rather long name of a sample.aif"})
        .parameters({{7, -6},
                     {8, -12},
                     {30, 434},
                     {44, 1},
                     {82, 26},
                     {83, 63},
                     {79, 41},
                     {80, 66},
                     {185, 9},
                     {186, -4},
                     {187, -14},
                     {188, 76},
                     {189, 400}},
                    {{411, 8}, {412, -13}, {415, 1000}, {167, 34}}, 1)
        .chunk(10, "bplist")
        .bytes();
}

} // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        std::fputs("usage: make_exs_seeds FOLDER\n", stderr);
        return 1;
    }
    for (const ExsLayout& layout : lumo::test::exs_layouts) {
        const std::filesystem::path folder = arguments[1];
        std::ofstream stream(folder / (std::string(layout.name) + ".exs"), std::ios::binary);
        stream << instrument(layout);
        if (!stream.flush()) {
            std::fputs("make_exs_seeds: a seed couldn't be written\n", stderr);
            return 1;
        }
    }
    return 0;
}
