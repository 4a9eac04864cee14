// The entries are those that the sampler requires of a state, and those that the tool reads.
#include "support/preset_text.h"

#include <cstddef>
#include <utility>

namespace lumo::test {
namespace {

constexpr int first_waveform = 0x10000000;

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        switch (c) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        default:
            result += c;
        }
    }
    return result;
}

/// Builds the lines of an XML property list, indented by depth.
class PlistText {
public:
    /// The lines so far. The object must not be used afterwards.
    std::string lines() { return std::move(text_); }
    /// The same as a whole property list.
    std::string file() {
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
               "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
               "<plist version=\"1.0\">\n" +
               text_ + "</plist>\n";
    }

    /// Begins a "dict" or an "array", which `close` ends.
    void open(const char* element) {
        line("<" + std::string(element) + ">");
        ++depth_;
    }
    void close(const char* element) {
        --depth_;
        line("</" + std::string(element) + ">");
    }
    void xml(std::string_view elements) { text_ += elements; }

    // The entries of a "dict".

    void key(const std::string& name) { line("<key>" + name + "</key>"); }
    void integer(const char* name, int value) {
        key(name);
        line("<integer>" + std::to_string(value) + "</integer>");
    }
    void real(const char* name, double value) {
        key(name);
        line("<real>" + std::to_string(value) + "</real>");
    }
    void boolean(const char* name, bool value) {
        key(name);
        line(value ? "<true/>" : "<false/>");
    }
    void string(const std::string& name, const std::string& value) {
        key(name);
        line("<string>" + escaped(value) + "</string>");
    }

private:
    void line(const std::string& content) {
        text_.append(depth_, '\t');
        text_ += content;
        text_ += '\n';
    }

    std::string text_;
    std::size_t depth_ = 0;
};

/// Adds the zone of one key for the sample `number`.
void add_zone(PlistText& text, int number) {
    text.open("dict");
    text.integer("ID", number);
    text.boolean("enabled", true);
    text.boolean("loop enabled", false);
    text.integer("max key", 36 + number);
    text.integer("min key", 36 + number);
    text.integer("root key", 36 + number);
    text.integer("waveform", first_waveform + number);
    text.close("dict");
}

/// Adds a zone with all its entries; `number` determines their values and its sample.
void add_whole_zone(PlistText& text, int number) {
    const int key = number % 120;
    text.open("dict");
    text.integer("ID", number);
    text.real("coarse tune", 0);
    text.boolean("enabled", true);
    text.real("fine tune", number * 0.01);
    text.real("gain", number * -0.01);
    text.integer("loop end", number * 100 + 90);
    text.boolean("loop enabled", false);
    text.integer("loop mode", 0);
    text.integer("loop start", number * 100);
    text.integer("max key", key + 7);
    text.integer("max vel", 127);
    text.integer("min key", key);
    text.integer("min vel", number % 100);
    text.string("name", "Zone #" + std::to_string(number));
    text.integer("output", 0);
    text.real("pan", 0);
    text.boolean("pitch tracking", true);
    text.integer("root key", key + 3);
    text.integer("sample end", number * 100 + 99);
    text.integer("waveform", first_waveform + number);
    text.close("dict");
}

void add_references(PlistText& text, const std::vector<std::string>& sample_paths) {
    text.key("file-references");
    text.open("dict");
    int waveform = first_waveform;
    for (const std::string& path : sample_paths) {
        text.string("Sample:" + std::to_string(waveform++), path);
    }
    text.close("dict");
}

/// Adds a layer with a zone from each call of `add` with the numbers from `first` to `last`.
void add_layer(PlistText& text, int first, int last, void (*add)(PlistText&, int)) {
    text.open("dict");
    text.key("Zones");
    text.open("array");
    for (int i = first; i < last; ++i) {
        add(text, i);
    }
    text.close("array");
    text.close("dict");
}

} // namespace

std::string preset_text(const std::vector<std::string>& sample_paths, std::string_view layers) {
    PlistText text;
    text.open("dict");
    text.real("AU version", 1);
    text.key("Instrument");
    text.open("dict");
    text.key("Layers");
    text.open("array");
    text.xml(layers);
    text.close("array");
    text.string("name", "Default Instrument");
    text.close("dict");
    add_references(text, sample_paths);
    text.string("name", "Test");
    text.xml(sampler_numbers);
    text.close("dict");
    return text.file();
}

std::string preset_text(const std::vector<std::string>& sample_paths) {
    PlistText layer;
    add_layer(layer, 0, static_cast<int>(sample_paths.size()), add_zone);
    return preset_text(sample_paths, layer.lines());
}

std::string large_state_text(int zones) {
    PlistText text;
    text.open("dict");
    text.key("Instrument");
    text.open("dict");
    text.key("Layers");
    text.open("array");
    add_layer(text, 0, zones, add_whole_zone);
    add_layer(text, zones, 2 * zones, add_whole_zone);
    text.close("array");
    text.close("dict");
    std::vector<std::string> paths;
    paths.reserve(static_cast<std::size_t>(zones));
    for (int i = 0; i < zones; ++i) {
        paths.push_back("samples/Kit/" + std::to_string(i) + ".wav");
    }
    add_references(text, paths);
    text.close("dict");
    return text.file();
}

} // namespace lumo::test
