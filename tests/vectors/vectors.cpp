// Files are JSON. The bytes of inputs and outputs are stored as text, in base64 or as a rule.
#include "vectors/vectors.h"

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <stdexcept>

namespace lumo::test {
namespace {

/// The text before and after the value in most XML inputs.
constexpr const char* plist_head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                   "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                                   "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                                   "<plist version=\"1.0\">\n";
constexpr const char* plist_tail = "\n</plist>\n";

std::string from_base64(const std::string& text) {
    const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string bytes;
    std::uint32_t group = 0;
    int bits = 0;
    for (const char c : text.substr(0, text.find('='))) {
        group = group << 6 | static_cast<std::uint32_t>(alphabet.find(c));
        bits += 6;
        if (bits >= 8) {
            bits -= 8;
            bytes.push_back(static_cast<char>(group >> bits & 0xFF));
        }
    }
    return bytes;
}

std::string big_endian(std::uint64_t value, std::size_t width) {
    std::string bytes;
    for (std::size_t i = width; i > 0; --i) {
        bytes.push_back(static_cast<char>(value >> 8 * (i - 1) & 0xFF));
    }
    return bytes;
}

/// The bytes of one part of a rule: text or hexadecimal bytes, `times` times, each followed by a
/// number of `width` bytes that starts at `from` and grows by `step`.
std::string part_bytes(const Json& part) {
    const std::string unit =
        part.contains("text") ? part["text"].get<std::string>() : from_hex(part.value("hex", ""));
    auto number = part.value("from", std::uint64_t{0});
    std::string bytes;
    for (std::size_t i = 0; i < part.value("times", std::size_t{1}); ++i) {
        bytes += unit + big_endian(number, part.value("width", std::size_t{0}));
        number += part.value("step", std::uint64_t{0});
    }
    return bytes;
}

} // namespace

Json read_vectors(const std::string& name) {
    std::ifstream file{std::string{LUMO_SOURCE} + "/tests/vectors/" + name};
    if (!file) {
        throw std::runtime_error("no recorded results " + name);
    }
    return Json::parse(file);
}

std::string vector_bytes(const Json& notation) {
    if (notation.contains("text")) {
        return notation["text"].get<std::string>();
    }
    if (notation.contains("in_plist")) {
        return plist_head + notation["in_plist"].get<std::string>() + plist_tail;
    }
    if (notation.contains("base64")) {
        return from_base64(notation["base64"].get<std::string>());
    }
    std::string bytes;
    for (const Json& part : notation.at("rule")) {
        bytes += part_bytes(part);
    }
    return bytes;
}

std::string from_hex(const std::string& hex) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        bytes.push_back(static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

} // namespace lumo::test
