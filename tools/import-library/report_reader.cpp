// nlohmann-json passes each value to a Reader, which stores it in the report; no tree of values is
// built.
#include "report_reader.h"

#include "text.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace lumo::library {
namespace {

using Json = nlohmann::json;
using Texts = std::vector<std::string>;
using Pair = std::pair<std::string, std::string>;
using Pairs = std::vector<Pair>;
using Layer = exs::Shape::Layer;
using Layers = std::vector<Layer>;

/// Where a value is stored; std::monostate for a value that is ignored.
using Target = std::variant<std::monostate, std::string*, bool*, std::int32_t*, std::uint64_t*,
                            double*, Texts*, Pairs*, Layers*, exs::Shape*>;

/// A key that an object must contain exactly once. Other keys are ignored.
struct Member {
    std::string_view key;
    Target target;
    bool is_found = false;
};
using Members = std::vector<Member>;

Members members_of(Report& report) {
    return {{"name", &report.name},
            {"source", &report.source},
            {"ok", &report.ok},
            {"error", &report.error},
            {"relinked", &report.relinked},
            {"unresolved", &report.unresolved},
            {"appleLibrary", &report.apple_library},
            {"samples", &report.samples},
            {"sampleBytes", &report.sample_bytes},
            {"copiedBytes", &report.copied_bytes},
            {"stateFile", &report.state_file},
            {"loadMs", &report.load_ms},
            {"shape", &report.shape}};
}

Members members_of(exs::Shape& shape) {
    return {{"zones", &shape.zones},
            {"maxStack", &shape.max_stack},
            {"stackedPercent", &shape.stacked_percent},
            {"lowestKey", &shape.lowest_key},
            {"highestKey", &shape.highest_key},
            {"layers", &shape.layers}};
}

Members members_of(Layer& layer) {
    return {{"name", &layer.name},
            {"zones", &layer.zones},
            {"loopedZones", &layer.looped_zones},
            {"controllerChosen", &layer.controller_chosen},
            {"onRelease", &layer.on_release}};
}

Members members_of(Pair& pair) {
    return {{"from", &pair.first}, {"to", &pair.second}};
}

/// An open object or array.
struct Level {
    Target list;     ///< of an array: where its elements are stored
    Members members; ///< of an object
};

/// Stores the values of a line as they are parsed. A function that returns false ends the parsing:
/// the line is not a report line.
class Reader : public nlohmann::json_sax<Json> {
public:
    explicit Reader(Report& report) : report_(report) {}

    bool null() override { return is_ignored(); }
    bool boolean(bool value) override { return store<bool>(value) || is_ignored(); }
    bool number_integer(number_integer_t value) override { return store_number(value); }
    bool number_unsigned(number_unsigned_t value) override { return store_number(value); }
    bool number_float(number_float_t value, const string_t& /*text*/) override {
        return store<double>(value) || is_ignored();
    }
    bool string(string_t& text) override {
        if (auto* list = target<Texts>(); list && is_in_array()) {
            list->push_back(as_bytes(text));
            return true;
        }
        return store<std::string>(as_bytes(text)) || is_ignored();
    }
    bool binary(binary_t& /*value*/) override { return false; }

    bool start_object(std::size_t /*size*/) override {
        if (levels_.empty()) {
            return open({}, members_of(report_));
        }
        if (auto* pairs = target<Pairs>(); pairs && is_in_array()) {
            return open({}, members_of(pairs->emplace_back()));
        }
        if (auto* layers = target<Layers>(); layers && is_in_array()) {
            return open({}, members_of(layers->emplace_back()));
        }
        if (auto* shape = target<exs::Shape>()) {
            return open({}, members_of(*shape));
        }
        return open_ignored();
    }
    bool key(string_t& name) override {
        if (ignored_levels_ > 0) {
            return true;
        }
        Members& members = levels_.back().members;
        const auto member = std::find_if(members.begin(), members.end(),
                                         [&](const Member& one) { return one.key == name; });
        target_ = member == members.end() ? Target() : member->target;
        return member == members.end() || !std::exchange(member->is_found, true);
    }
    bool end_object() override { return close(); }

    bool start_array(std::size_t /*size*/) override {
        const bool is_list = target<Texts>() || target<Pairs>() || target<Layers>();
        return is_list && !is_in_array() ? open(target_, {}) : open_ignored();
    }
    bool end_array() override { return close(); }

    bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                     const Json::exception& /*error*/) override {
        return false;
    }

private:
    template <class T>
    T* target() const {
        const auto* found = std::get_if<T*>(&target_);
        return found ? *found : nullptr;
    }
    template <class T>
    bool store(T value) const {
        T* const place = target<T>();
        if (place) {
            *place = std::move(value);
        }
        return place;
    }
    template <class Number>
    bool store_number(Number value) const {
        return store(static_cast<std::int32_t>(value)) ||
               store(static_cast<std::uint64_t>(value)) || store(static_cast<double>(value)) ||
               is_ignored();
    }

    bool is_in_array() const {
        return !std::holds_alternative<std::monostate>(levels_.back().list);
    }
    /// Whether the value at hand belongs to an unknown key.
    bool is_ignored() const {
        return !levels_.empty() && std::holds_alternative<std::monostate>(target_);
    }

    bool open(Target list, Members members) {
        levels_.push_back({list, std::move(members)});
        target_ = list;
        return true;
    }
    bool open_ignored() {
        ignored_levels_ += 1;
        return is_ignored();
    }
    /// Closes the innermost object or array. False when a key of the object is missing.
    bool close() {
        if (ignored_levels_ > 0) {
            ignored_levels_ -= 1;
            return true;
        }
        const Members members = std::move(levels_.back().members);
        levels_.pop_back();
        target_ = levels_.empty() ? Target() : levels_.back().list;
        return std::all_of(members.begin(), members.end(),
                           [](const Member& member) { return member.is_found; });
    }

    Report& report_;
    Target target_; ///< of the next value
    std::vector<Level> levels_;
    std::size_t ignored_levels_ = 0; ///< open objects and arrays of an unknown key
};

} // namespace

bool read_report(std::string_view utf8, Report& report) {
    Reader reader(report);
    return Json::sax_parse(utf8, &reader);
}

} // namespace lumo::library
