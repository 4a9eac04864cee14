// The entries are those that the sampler requires of a state, and those that the tool reads.
#include "support/preset_text.h"

#include <cstddef>

namespace lumo::test {
namespace {

constexpr std::size_t first_waveform = 0x10000000;

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

std::string integer(std::string_view key, std::size_t value) {
    return "<key>" + std::string(key) + "</key><integer>" + std::to_string(value) + "</integer>\n";
}

std::string zone(std::size_t number) {
    return "<dict>" + integer("ID", number) +
           "<key>enabled</key><true/>\n<key>loop enabled</key><false/>\n" +
           integer("max key", 36 + number) + integer("min key", 36 + number) +
           integer("root key", 36 + number) + integer("waveform", first_waveform + number) +
           "</dict>\n";
}

std::string references(const std::vector<std::string>& sample_paths) {
    std::string text = "<key>file-references</key><dict>\n";
    for (std::size_t i = 0; i < sample_paths.size(); ++i) {
        text += "<key>Sample:" + std::to_string(first_waveform + i) + "</key><string>" +
                escaped(sample_paths[i]) + "</string>\n";
    }
    return text + "</dict>\n";
}

} // namespace

std::string preset_text(const std::vector<std::string>& sample_paths, std::string_view layers) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n"
           "<key>AU version</key><real>1</real>\n"
           "<key>Instrument</key><dict><key>Layers</key><array>" +
           std::string(layers) +
           "</array>\n<key>name</key><string>Default Instrument</string></dict>\n" +
           references(sample_paths) + integer("manufacturer", 1634758764) +
           "<key>name</key><string>Test</string>\n" + integer("subtype", 1935764848) +
           integer("type", 1635085685) + integer("version", 0) + "</dict>\n</plist>\n";
}

std::string preset_text(const std::vector<std::string>& sample_paths) {
    std::string zones;
    for (std::size_t i = 0; i < sample_paths.size(); ++i) {
        zones += zone(i);
    }
    return preset_text(sample_paths, "<dict>" + integer("ID", 0) + "<key>Zones</key><array>" +
                                         zones + "</array></dict>");
}

} // namespace lumo::test
