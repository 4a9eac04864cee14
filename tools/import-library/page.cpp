// The page is page/page.html with the styles, the script and the data inserted. The data are
// compact JSON: a path is a folder's number and a name, and an instrument is a list; page/page.js
// names its elements.
#include "page.h"

#include "layers_json.h"
#include "page_files.h"
#include "text.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

namespace lumo::library {
namespace {

/// The keys of a map from texts to 0, 1, 2 and so on, ordered by their numbers.
std::vector<std::string> in_order(const std::map<std::string, std::size_t, std::less<>>& numbers) {
    std::vector<std::string> texts(numbers.size());
    for (const auto& [text, number] : numbers) {
        texts[number] = text;
    }
    return texts;
}

/// Replaces `mark`, which occurs once in `text`, with `value`.
void put_in(std::string& text, std::string_view mark, std::string_view value) {
    text.replace(text.find(mark), mark.size(), value);
}

void write_head(JsonWriter& json, const Tally& tally, const PageHead& head) {
    const auto number = [&](std::string_view key, std::uint64_t value) {
        json.key(key);
        json.number(value);
    };
    json.key("package");
    json.text(head.package);
    json.key("made");
    json.text(head.made);
    number("samples", tally.samples);
    number("copied", tally.copied_bytes);
    json.key("seconds");
    if (head.notes.seconds) {
        json.one_decimal(*head.notes.seconds);
    } else {
        json.literal("null");
    }
    number("before", head.notes.already_imported);
    number("left", head.notes.left);
    number("unreadable", head.notes.unreadable);
}

} // namespace

std::size_t Page::folder_number(std::string_view folder) {
    const auto found = folders_.find(folder);
    return found != folders_.end() ? found->second
                                   : folders_.emplace(folder, folders_.size()).first->second;
}

std::size_t Page::cause_number(const Cause& cause) {
    return causes_.emplace(cause.text, causes_.size()).first->second;
}

void Page::write_path(std::string_view bytes) {
    instruments_.number(folder_number(folder_of(bytes)));
    instruments_.text(name_of(bytes));
}

void Page::write_paths(const std::vector<std::string>& list) {
    instruments_.list(list, [&](const std::string& bytes) { write_path(bytes); });
}

/// Writes each sample that was found elsewhere: recorded folder and name, and those of the file; 0
/// for an equal name.
void Page::write_relinked(const Report& report) {
    instruments_.list(report.relinked, [&](const std::pair<std::string, std::string>& sample) {
        const auto& [from, to] = sample;
        write_path(from);
        if (shown(name_of(from)) == shown(name_of(to))) {
            instruments_.number(folder_number(folder_of(to)));
            instruments_.number(0);
        } else {
            write_path(to);
        }
    });
}

void Page::add(const Report& report) {
    const exs::Shape& shape = report.shape;
    JsonWriter& json = instruments_;
    if (!json.json().empty()) {
        json.new_line();
    }
    json.begin_list();
    json.text(report.name);
    write_path(report.source);
    if (report.ok) {
        json.number(-1);
    } else {
        json.number(cause_number(cause_of(report.error)));
    }
    json.text(report.error);
    json.number(report.samples);
    json.number(report.sample_bytes);
    json.number(report.copied_bytes);
    write_path(report.state_file);
    json.one_decimal(report.load_ms);
    json.number(shape.zones);
    json.number(shape.max_stack);
    json.one_decimal(shape.stacked_percent);
    json.number(shape.lowest_key);
    json.number(shape.highest_key);
    write_layers(json, report);
    write_relinked(report);
    write_paths(report.unresolved);
    write_paths(report.apple_library);
    json.end_list();
}

void Page::write_causes(JsonWriter& json, const Tally& tally) const {
    std::vector<CauseCount> causes(causes_.size());
    for (const CauseCount& count : tally.causes()) {
        causes[causes_.find(count.cause.text)->second] = count;
    }
    json.key("causes");
    json.list(causes, [&](const CauseCount& count) {
        json.begin_list();
        json.text(count.cause.text);
        json.text(count.cause.remedy);
        json.number(count.failures);
        json.end_list();
    });
}

std::string Page::data(const Tally& tally, const PageHead& head) const {
    JsonWriter json;
    json.begin_object();
    write_head(json, tally, head);
    write_causes(json, tally);
    json.new_line();
    json.key("missing");
    json.list(tally.missing(), [&](const MissingSamples& missing) {
        json.begin_list();
        json.text(missing.folder);
        json.number(missing.samples);
        json.end_list();
    });
    json.new_line();
    json.key("folders");
    json.list(in_order(folders_), [&](const std::string& folder) { json.text(folder); });
    json.new_line();
    json.key("instruments");
    json.begin_list();
    json.literal(instruments_.json());
    json.end_list();
    json.end_object();
    return json.json();
}

std::string Page::html(const Tally& tally, const PageHead& head) const {
    std::string text(page_html);
    put_in(text, "{styles}", page_css);
    put_in(text, "{script}", page_js);
    put_in(text, "{data}", data(tally, head));
    return text;
}

std::string write_page(const std::string& path, const std::string& html) {
    std::error_code error;
    const auto there = std::filesystem::status(path, error);
    const bool is_device = std::filesystem::exists(there) && !is_regular_file(there);
    const std::string written = is_device ? path : path + ".part";
    std::ofstream file(written, std::ios::binary | std::ios::trunc);
    file.write(html.data(), static_cast<std::streamsize>(html.size()));
    file.close();
    if (!file.fail() && (is_device || std::rename(written.c_str(), path.c_str()) == 0)) {
        return {};
    }
    std::string reason = std::strerror(errno);
    if (!is_device) {
        std::remove(written.c_str());
    }
    return reason;
}

} // namespace lumo::library
