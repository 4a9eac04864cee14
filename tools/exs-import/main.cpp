// lumo-exs-import: imports sampler instruments into a Lumo show and prints one line of JSON per
// instrument to standard output.
#include "command_line.h"
#include "report_line.h"
#include <lumo/exs.h>
#include <lumo/relink.h>

#include <cstdio>
#include <optional>
#include <string>

int main(int argc, char** argv) {
    using namespace lumo::exs;
    std::optional<CommandLine> line = parse_command_line(argc, argv);
    if (!line) {
        std::fputs(usage, stderr);
        return 1;
    }
    SampleIndex index;
    for (const std::string& root : root_folders(*line)) {
        index.add_root(root);
    }
    line->options.index = &index;
    for (const std::string& instrument : line->instruments) {
        print(import_instrument(instrument, line->options));
    }
    return 0;
}
