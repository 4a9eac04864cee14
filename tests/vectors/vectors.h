// The recorded results of CoreFoundation in this folder; README.md describes their format.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace lumo::test {

using Json = nlohmann::json;

/// The records of a file in this folder ("read-xml.json"), with inputs and outputs not decoded.
/// Throws when there is no such file.
Json read_vectors(const std::string& name);

/// The bytes described by the "input" or "output" of a record.
std::string vector_bytes(const Json& notation);

/// The bytes written as hexadecimal digits, two per byte.
std::string from_hex(const std::string& hex);

} // namespace lumo::test
