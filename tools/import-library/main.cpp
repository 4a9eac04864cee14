// lumo-import-library: imports whole folders of sampler instruments into a Lumo show. It finds the
// instruments, starts lumo-exs-import to import them, and reads its report lines.
#include "command_line.h"
#include "session.h"

#include <clocale>
#include <cstdio>
#include <variant>

// NOLINTNEXTLINE(bugprone-exception-escape): without memory the program ends
int main(int argc, char** argv) {
    using namespace lumo::library;
    std::setlocale(LC_CTYPE, ""); // for the widths of characters
    const std::variant<CommandLine, Answer> parsed = parse_command_line(argc, argv);
    if (const auto* answer = std::get_if<Answer>(&parsed)) {
        std::fputs(answer->text.c_str(), answer->status == 0 ? stdout : stderr);
        return answer->status;
    }
    const auto& line = std::get<CommandLine>(parsed);
    return line.from.empty() ? import_library(line) : sum_up(line);
}
