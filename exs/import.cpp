// The import of one instrument, step by step: load it into AUSampler while samples that moved are
// redirected, read the sampler's state back, place its samples in the show, write the state with
// references into the show, and check that it loads from there. A step that fails sets the error in
// the report and ends the import; files written before remain.
#include "preset_file.h"
#include "property_list.h"
#include "references.h"
#include "sampler_host.h"
#include "samples.h"
#include <lumo/exs.h>

#include <fcntl.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

namespace lumo::exs {
namespace fs = std::filesystem;
namespace {

constexpr OSStatus file_not_found = -43; // kAudio_FileNotFoundError of CoreAudio

enum class Kind { preset, exs };

std::optional<Kind> kind_of(const std::string& path) {
    if (has_extension(path, ".aupreset")) {
        return Kind::preset;
    }
    return has_extension(path, ".exs") ? std::optional(Kind::exs) : std::nullopt;
}

std::string with_status(const std::string& text, OSStatus status) {
    return text + " (OSStatus " + std::to_string(status) + ")";
}

/// The index of the run; an empty one if the run has none.
const SampleIndex& index_of(const Options& options) {
    static const SampleIndex empty;
    return options.index ? *options.index : empty;
}

/// Calls `load` inside a relink session and stores the session's result.
template <typename Load>
OSStatus load_in_session(const SampleIndex& index, relink::Result& result, Load load) {
    relink::begin(index);
    const OSStatus status = load();
    result = relink::end();
    return status;
}

OSStatus load_exs(AudioUnit sampler, const SampleIndex& index, Report& report) {
    const std::string& path = report.source;
    const auto url = adopt(CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(path.data()),
        static_cast<CFIndex>(path.size()), false));
    return url ? load_in_session(index, report.relink, [&] { return set_exs(sampler, url.get()); })
               : file_not_found;
}

/// Loads a preset; returns the status of the load, or nothing, with the error set, when the file is
/// not a preset.
std::optional<OSStatus> load_preset(AudioUnit sampler, const SampleIndex& index, Report& report) {
    const Ref<CFDictionaryRef> preset = read_dictionary(report.source);
    if (!preset) {
        report.error = "the preset isn't a property list";
        return std::nullopt;
    }
    return load_in_session(index, report.relink, [&] { return set_state(sampler, preset.get()); });
}

/// Loads the instrument and measures the time, including that for reading the file.
std::optional<OSStatus> load(AudioUnit sampler, Kind kind, const SampleIndex& index,
                             Report& report) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    const std::optional<OSStatus> status =
        kind == Kind::exs ? load_exs(sampler, index, report) : load_preset(sampler, index, report);
    if (status) {
        const std::chrono::nanoseconds taken = Clock::now() - start;
        report.load_ms = static_cast<double>(taken.count()) / 1000000.0;
    }
    return status;
}

/// Whether the loaded instrument can be imported; otherwise sets the error. Samples that the
/// session recorded as missing or as Apple's take precedence over the sampler's status, which is
/// often only a consequence.
bool judge(OSStatus status, Report& report) {
    if (!report.relink.apple_library.empty()) {
        report.error = "it uses samples from Apple's sound library: Lumo imports only your own or "
                       "exported instruments";
    } else if (!report.relink.unresolved.empty()) {
        const fs::path missing = report.relink.unresolved.front();
        report.error = "a sample wasn't found: " + missing.filename().string();
    } else if (status != 0) {
        report.error = with_status("AUSampler couldn't load it", status);
    } else {
        return true;
    }
    return false;
}

/// The state of a sampler that has loaded the instrument; nothing, with the error set, on failure.
/// The sampler has been disposed of on return.
Ref<CFPropertyListRef> loaded_state(const Options& options, Report& report) {
    const std::optional<Kind> kind = kind_of(report.source);
    if (!kind) {
        report.error = "not an EXS instrument or an AUSampler preset";
        return {};
    }
    const Sampler sampler = make_sampler(report.error);
    if (!sampler) {
        return {};
    }
    const std::optional<OSStatus> status = load(sampler.get(), *kind, index_of(options), report);
    if (!status || !judge(*status, report)) {
        return {};
    }
    Ref<CFPropertyListRef> state = get_state(sampler.get());
    if (!state) {
        report.error = "AUSampler's state couldn't be read";
    }
    return state;
}

/// Places the samples of `state` in the show and creates the states folder. Returns the samples'
/// new references; nothing, with the error set, when a sample is missing or cannot be copied.
std::optional<References> bring_samples(const void* state, const Options& options, Report& report) {
    const std::optional<SampleFiles> samples =
        find_samples(references(state), options.index, report);
    if (!samples) {
        return std::nullopt;
    }
    try {
        References placed = place_samples(*samples, options.package, report);
        fs::create_directories(options.states);
        return placed;
    } catch (const fs::filesystem_error& failure) {
        report.error =
            std::string("the samples couldn't be copied into the show: ") + failure.what();
        return std::nullopt;
    }
}

std::string numbered_state(const fs::path& folder, const std::string& name, unsigned number) {
    const std::string suffix = number == 1 ? "" : "-" + std::to_string(number);
    return (folder / (name + suffix + ".aupreset")).string();
}

bool is_taken(const fs::path& file) {
    return fs::exists(fs::symlink_status(file));
}

/// Writes `state` to the first of NAME.aupreset, NAME-2.aupreset, NAME-3.aupreset and so on that
/// does not exist; other processes may create these, too. Throws std::filesystem::filesystem_error
/// if it cannot be checked whether one exists. A run may import thousands of instruments with the
/// same name: as long as the last state with this name exists, lower numbers are not checked again.
bool write_state(const void* state, const Options& options, Report& report) {
    thread_local std::unordered_map<std::string, unsigned> last_numbers; // by the first name's path
    const auto file = [&](unsigned number) {
        return numbered_state(options.states, report.name, number);
    };
    const auto [known, is_first] = last_numbers.try_emplace(file(1));
    unsigned& last = known->second;
    last = !is_first && is_taken(file(last)) ? last + 1 : 1;
    while (!write_plist(state, file(last), O_EXCL)) {
        const bool exists = errno == EEXIST;
        while (is_taken(file(last))) {
            ++last;
        }
        if (!exists) {
            report.error = "its state couldn't be written";
            return false;
        }
    }
    report.state_file = file(last);
    return true;
}

/// The written state with resolved references; nothing, with the error set, when one cannot be
/// resolved.
Ref<CFPropertyListRef> resolved(const void* state, const Options& options, Report& report) {
    std::string reason;
    auto list = adopt(resolve_package_state(state, options.package, reason));
    if (!list) {
        report.error = "check: " + reason;
    }
    return list;
}

/// Whether a new sampler loads `state` without a relink session; otherwise sets the error.
bool loads_from_show(const void* state, Report& report) {
    std::string unused;
    const Sampler sampler = make_sampler(unused);
    const OSStatus status = sampler ? set_state(sampler.get(), state) : 0;
    if (!sampler || status != 0) {
        report.error = with_status("check: it didn't load from the show", status);
        return false;
    }
    return true;
}

} // namespace

Report import_instrument(const std::string& path, const Options& options) {
    Report report;
    report.source = path;
    report.name = fs::path(path).stem().string();
    Ref<CFPropertyListRef> state = loaded_state(options, report);
    if (!state) {
        return report;
    }
    report.shape = describe(state.get());
    const std::optional<References> placed = bring_samples(state.get(), options, report);
    if (!placed) {
        return report;
    }
    state = with_references(state.get(), *placed);
    if (!write_state(state.get(), options, report)) {
        return report;
    }
    state = resolved(state.get(), options, report);
    report.ok = state && loads_from_show(state.get(), report);
    return report;
}

} // namespace lumo::exs
