// A large sampler state as a Mac writes it: two layers of zones with 20 entries each, and a sample
// for every zone of a layer.
#pragma once

#include <cstddef>
#include <string>
#include <utility>

namespace lumo::bench {

/// Builds the lines of an XML property list, indented by depth.
class PlistText {
public:
    /// The whole list. The object must not be used afterwards.
    std::string finish() { return std::move(text_) + "</plist>\n"; }

    /// Begins a "dict" or an "array", which `close` ends.
    void open(const char* element) {
        line("<" + std::string(element) + ">");
        ++depth_;
    }
    void close(const char* element) {
        --depth_;
        line("</" + std::string(element) + ">");
    }

    // The entries of a "dict". Names and texts are written without escaping.

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
        line("<string>" + value + "</string>");
    }

private:
    void line(const std::string& content) {
        text_.append(depth_, '\t');
        text_ += content;
        text_ += '\n';
    }

    std::string text_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                        "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                        "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                        "<plist version=\"1.0\">\n";
    std::size_t depth_ = 0;
};

/// Adds the dictionary of zone `number`, which determines its values and its sample.
inline void add_zone(PlistText& text, int number) {
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
    text.integer("waveform", 268435456 + number);
    text.close("dict");
}

/// The state in XML, with `zones` zones per layer.
inline std::string state_text(int zones) {
    PlistText text;
    text.open("dict");
    text.key("Instrument");
    text.open("dict");
    text.key("Layers");
    text.open("array");
    for (int layer = 0; layer < 2; ++layer) {
        text.open("dict");
        text.key("Zones");
        text.open("array");
        for (int i = 0; i < zones; ++i) {
            add_zone(text, layer * zones + i);
        }
        text.close("array");
        text.close("dict");
    }
    text.close("array");
    text.close("dict");
    text.key("file-references");
    text.open("dict");
    for (int i = 0; i < zones; ++i) {
        text.string("Sample:" + std::to_string(268435456 + i),
                    "samples/Kit/" + std::to_string(i) + ".wav");
    }
    text.close("dict");
    text.close("dict");
    return text.finish();
}

} // namespace lumo::bench
