// Counts outcomes, and groups failures by cause and missing samples by folder.
#include "tally.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

namespace lumo::library {
namespace {

/// The folder of `path`, truncated to its first `depth` names; "/" for the root.
std::string_view folder_of(std::string_view path, std::size_t depth) {
    const std::size_t last = path.rfind('/');
    if (last == std::string_view::npos) {
        return {};
    }
    std::size_t end = 0;
    for (std::size_t names = 0; names < depth && end != last; ++names) {
        end = std::min(path.find('/', end + 1), last);
    }
    return path.substr(0, std::max<std::size_t>(end, 1));
}

std::map<std::string_view, std::uint64_t> grouped(const std::set<std::string>& paths,
                                                  std::size_t depth) {
    std::map<std::string_view, std::uint64_t> folders;
    for (const std::string& path : paths) {
        ++folders[folder_of(path, depth)];
    }
    return folders;
}

/// The largest number of names in the folder of a path.
std::size_t deepest(const std::set<std::string>& paths) {
    std::ptrdiff_t max_count = 1;
    for (const std::string& path : paths) {
        max_count = std::max(max_count, std::count(path.begin(), path.end(), '/'));
    }
    return static_cast<std::size_t>(max_count);
}

} // namespace

void Tally::add(const Report& report) {
    missing_.insert(report.unresolved.begin(), report.unresolved.end());
    copied_bytes += report.copied_bytes;
    if (report.ok) {
        ++imported;
        samples += report.samples;
        return;
    }
    ++failed;
    Cause cause = cause_of(report.error);
    CauseCount& count = causes_[cause.text];
    count.cause = std::move(cause);
    ++count.failures;
}

std::vector<CauseCount> Tally::causes() const {
    std::vector<CauseCount> list;
    for (const auto& [text, count] : causes_) {
        list.push_back(count);
    }
    std::stable_sort(list.begin(), list.end(), [](const CauseCount& one, const CauseCount& other) {
        return one.failures > other.failures;
    });
    return list;
}

std::vector<MissingSamples> Tally::missing() const {
    constexpr std::size_t max_folders = 10;
    std::size_t depth = deepest(missing_);
    std::map<std::string_view, std::uint64_t> folders = grouped(missing_, depth);
    while (folders.size() > max_folders && depth > 1) {
        folders = grouped(missing_, --depth);
    }
    std::vector<MissingSamples> list;
    list.reserve(folders.size());
    for (const auto& [folder, count] : folders) {
        list.push_back({std::string(folder), count});
    }
    std::stable_sort(list.begin(), list.end(),
                     [](const MissingSamples& one, const MissingSamples& other) {
                         return one.samples > other.samples;
                     });
    return list;
}

} // namespace lumo::library
