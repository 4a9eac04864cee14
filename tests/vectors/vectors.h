// The recorded results of CoreFoundation in this folder; README.md has their form.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace lumo::test {

using Json = nlohmann::json;

/// The records of a file of this folder ("read-xml.json"), with every input or output in it as it
/// stands. Throws when there is no such file.
Json read_vectors(const std::string& name);

/// The bytes that an "input" or "output" of a record stands for.
std::string vector_bytes(const Json& notation);

/// The bytes that hexadecimal digits stand for, two each.
std::string from_hex(const std::string& hex);

} // namespace lumo::test
