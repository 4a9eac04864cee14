// CLI11 parses the arguments, makes the help text and finds most faults. Its exit statuses, one for
// each kind of fault, are not used: the program's is 1 for every fault.
#include "command_line.h"

#include "text.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <memory>
#include <numeric>
#include <string_view>
#include <system_error>
#include <utility>

namespace lumo::library {
namespace {

constexpr const char* description = "Imports whole folders of sampler instruments into a Lumo "
                                    "show: starts lumo-exs-import for all\n"
                                    ".exs and .aupreset files in the folders, shows the progress, "
                                    "and summarises the failures with\n"
                                    "their causes and remedies.";

constexpr const char* footer =
    "Exit status: 0 all were imported, 2 some were not, 1 the command line is wrong,\n"
    "3 the run could not be finished, 130 ended by Ctrl-C.\n";

constexpr const char* usage =
    "usage: lumo-import-library --package SHOW.lumo --states FOLDER [--search FOLDER]...\n"
    "           [--page FILE.html] [--lines FILE] [--continue FILE] [--shard K/N] [--dry-run]\n"
    "           FOLDER|INSTRUMENT...\n"
    "       lumo-import-library --from FILE... [--page FILE.html]\n";

class Format : public CLI::Formatter {
public:
    std::string make_usage(const CLI::App* /*app*/, std::string /*name*/) const override {
        return std::string("\n") + usage;
    }
    std::string make_positionals(const CLI::App* /*app*/) const override { return {}; }
};

struct Options {
    CLI::App app{description, "lumo-import-library"};
    CommandLine line;
    std::string shard;
    std::vector<CLI::Option*> of_an_import; ///< those that cannot be combined with --from

    CLI::Option* value(const char* name, std::string& target, const char* type, const char* what) {
        return app.add_option(name, target, what)->type_name(type)->take_last();
    }
};

void add_options(Options& options) {
    CommandLine& line = options.line;
    CLI::App& app = options.app;
    options.of_an_import = {
        options.value("--package", line.package, "SHOW.lumo", "the show that receives the samples"),
        options.value("--states", line.states, "FOLDER",
                      "the folder that receives the sampler states"),
        app.add_option("--search", line.search,
                       "a folder with samples that moved; may be given several times")
            ->type_name("FOLDER")
            ->allow_extra_args(false),
        options.value("--lines", line.lines, "FILE", "append each report line to this file"),
        options.value("--continue", line.continue_file, "FILE",
                      "skip what the report lines in this file list as imported"),
        options.value("--shard", options.shard, "K/N", "import only the K-th of N parts"),
        app.add_flag("--dry-run", line.is_dry_run, "only print the number of instruments"),
        app.add_option("arguments", line.arguments),
    };
    options.value("--page", line.page, "FILE.html", "write a page about all instruments");
    app.add_option("--from", line.from, "import nothing: summarise the report lines of these files")
        ->type_name("FILE");
    app.set_version_flag("--version", "lumo-import-library " LUMO_VERSION);
    app.footer(footer);
    app.formatter(std::make_shared<Format>());
}

/// The number of characters to insert, remove or replace to change one text into the other.
std::size_t distance(std::string_view one, std::string_view other) {
    std::vector<std::size_t> row(other.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (const char from : one) {
        auto cell = row.begin();
        std::size_t diagonal = (*cell)++;
        for (const char to : other) {
            const std::size_t replaced = diagonal + (from == to ? 0 : 1);
            const std::size_t inserted = *cell + 1;
            diagonal = *++cell;
            *cell = std::min({replaced, inserted, diagonal + 1});
        }
    }
    return row.back();
}

/// The option most similar to `word`; empty when none is similar.
std::string suggestion(const CLI::App& app, std::string_view word) {
    word = word.substr(0, word.find('='));
    std::string best;
    std::size_t least = 4; // with more changes it is another word
    for (const CLI::Option* option : app.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            const std::size_t changes = distance(word, "--" + name);
            if (changes < least) {
                least = changes;
                best = "--" + name;
            }
        }
    }
    return best;
}

Answer fault(const std::string& what) {
    return {1, "lumo-import-library: " + what + "\nRun with --help for more information.\n"};
}

Answer fault(const CLI::App& app, const CLI::ParseError& error) {
    const std::vector<std::string> unknown = app.remaining();
    if (unknown.empty()) {
        return fault(shown(error.what()));
    }
    const std::string meant = suggestion(app, unknown.front());
    return fault("there is no option " + shown(unknown.front()) +
                 (meant.empty() ? "" : "; did you mean " + meant + "?"));
}

/// Reads "K/N". False when it is not that, or K is not one of 1 to N.
bool read_shard(std::string_view text, Shard& shard) {
    const char* end = text.data() + text.size();
    const auto number = std::from_chars(text.data(), end, shard.number);
    if (number.ec != std::errc() || number.ptr == end || *number.ptr != '/') {
        return false;
    }
    const auto of = std::from_chars(number.ptr + 1, end, shard.of);
    return of.ec == std::errc() && of.ptr == end && shard.number >= 1 && shard.number <= shard.of;
}

/// The path without slashes at its end, and with "./" before a "-".
std::string plain_path(std::string path) {
    while (path.size() > 1 && path.ends_with('/')) {
        path.pop_back();
    }
    return path.starts_with('-') ? "./" + path : path;
}

/// A fault that CLI11 does not detect; empty when there is none.
std::string fault_of(const Options& options) {
    const CommandLine& line = options.line;
    if (!line.from.empty()) {
        for (const CLI::Option* option : options.of_an_import) {
            if (option->count() > 0) {
                return "--from imports nothing: " + option->get_name() + " does not go with it";
            }
        }
        return {};
    }
    if (line.package.empty()) {
        return "--package SHOW.lumo is missing";
    }
    if (line.states.empty()) {
        return "--states FOLDER is missing";
    }
    return line.arguments.empty() ? "name a folder with instruments, or instruments" : "";
}

} // namespace

std::variant<CommandLine, Answer> parse_command_line(int argc, const char* const* argv) {
    Options options;
    add_options(options);
    try {
        options.app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        return Answer{0, options.app.help()};
    } catch (const CLI::CallForVersion& version) {
        return Answer{0, std::string(version.what()) + '\n'};
    } catch (const CLI::ParseError& error) {
        return fault(options.app, error);
    }
    CommandLine& line = options.line;
    if (!options.shard.empty() && !read_shard(options.shard, line.shard)) {
        return fault("--shard takes K/N with K from 1 to N, such as 2/8");
    }
    if (const std::string what = fault_of(options); !what.empty()) {
        return fault(what);
    }
    for (std::vector<std::string>* paths : {&line.search, &line.arguments}) {
        std::transform(paths->begin(), paths->end(), paths->begin(), plain_path);
    }
    return line;
}

} // namespace lumo::library
